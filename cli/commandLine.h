// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/options.h"
#include "engine/benchBase.h"

#include <QString>
#include <QStringList>

/// What the arguments of the console runner ask for.
struct commandLine {
    enum action {
        runFull, ///< all tests at the standard resolution
        runTests ///< the named tests
    };

    action wanted = runFull;
    QStringList tests;  ///< exact names, in the order given
    QString resolution; ///< "widthxheight", empty for the standard resolution
    int testTime = benchBase::standardTestTime; ///< milliseconds
    bool isUpload = false;                      ///< a full run's results go to the online database
    QString server;                             ///< its "host" or "host:port", with "https://" for TLS
};

/// Reads @p arguments, the program's own name first. Blanks in a test's name need not be exact;
/// anything else that is not among @p testNames and @p resolutionNames is an error that lists them.
parsed<commandLine> parseCommandLine(const QStringList &arguments, const QStringList &testNames,
                                     const QStringList &resolutionNames);

/// The console runner's name, as its messages begin with it.
QString consoleRunnerName();
