// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"
#include "engine/computerName.h"
#include "ui/mainwindow.h"
#include "ui/screenFit.h"

#include <QApplication>
#include <QSysInfo>

int main(int argc, char *argv[])
{
    // Nothing here draws with OpenGL, whose library takes half of the start and of the memory.
    if (!qEnvironmentVariableIsSet("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    // A screen at 150 % is neither one at 100 % nor one at 200 %.
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("fennick"));
    provideComputerName(QSysInfo::machineHostName());
    MainWindow window(nullptr, makeSuite, std::make_unique<httpDatabase>());
    screenFit::fit(window);
    window.show();
    return QApplication::exec();
}
