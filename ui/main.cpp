// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"
#include "engine/computerName.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QSysInfo>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("fennick"));
    provideComputerName(QSysInfo::machineHostName());
    MainWindow window(nullptr, makeSuite, std::make_unique<httpDatabase>());
    window.show();
    return QApplication::exec();
}
