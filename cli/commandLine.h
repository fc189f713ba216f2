// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchBase.h"

#include <QString>
#include <QStringList>

/// What the arguments of the console runner ask for.
struct commandLine {
    enum action {
        runFull,  ///< all tests at the standard resolution
        runTests, ///< the named tests
        showText, ///< message goes to standard output: help, version, the lists
        showError ///< message goes to standard error
    };

    action wanted = runFull;
    QStringList tests;  ///< exact names, in the order given
    QString resolution; ///< "widthxheight", empty for the standard resolution
    int testTime = benchBase::standardTestTime; ///< milliseconds
    bool isUpload = false;                      ///< a full run's results go to the online database
    QString server;                             ///< its "host" or "host:port"
    QString message;
};

/// Reads @p arguments, the program's own name first. Blanks in a test's name need not be exact;
/// anything else that is not among @p testNames and @p resolutionNames is an error that lists them.
commandLine parseCommandLine(const QStringList &arguments, const QStringList &testNames,
                             const QStringList &resolutionNames);
