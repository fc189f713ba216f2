// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include <QCoreApplication>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    // The same as the window's, so that both keep their files in the same directory.
    QCoreApplication::setApplicationName(QStringLiteral("fennick"));
    QCoreApplication::setApplicationVersion(QStringLiteral(FENNICK_VERSION));
    return runConsole(QCoreApplication::arguments());
}
