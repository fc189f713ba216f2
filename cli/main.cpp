// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandTable.h"
#include "cli/consoleRunner.h"
#include "console/standardStreams.h"
#include "engine/computerName.h"

#include <QCoreApplication>
#include <QSysInfo>

int main(int argc, char *argv[])
{
    occupyStandardHandles();
    QCoreApplication application(argc, argv);
    // The same as the window's, so that both keep their files in the same directory.
    QCoreApplication::setApplicationName(QStringLiteral("fennick"));
    provideComputerName(QSysInfo::machineHostName());
    return exitCodeAfterOutput(runConsole(QCoreApplication::arguments()), consoleRunnerName(),
                               exitLostOutput);
}
