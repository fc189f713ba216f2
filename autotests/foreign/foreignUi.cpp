// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mainwindow.h"

#include <QApplication>
#include <QPixmap>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const MainWindow window;
    const bool isComplete = window.windowTitle().startsWith(QStringLiteral("Fennick CPU bench"))
                            && !QPixmap(QStringLiteral(":/icons/fire.png")).isNull();
    return isComplete ? 0 : 1;
}
