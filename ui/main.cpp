// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"
#include "ui/mainwindow.h"

#include <QApplication>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("fennick"));
    QApplication::setApplicationVersion(QStringLiteral(FENNICK_VERSION));
    MainWindow window(nullptr, makeSuite, std::make_unique<httpDatabase>());
    window.show();
    return QApplication::exec();
}
