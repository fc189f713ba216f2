// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchBase.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>

/// Where a run is written to: names of files, "-" for standard output, empty for nowhere. At most
/// one of them is "-".
struct outputFiles {
    QString json;
    QString csv;
    QString markdown;

    bool isOnStandardOutput() const
    {
        const QString dash = QStringLiteral("-");
        return json == dash || csv == dash || markdown == dash;
    }
};

/// A run of tests.
struct runRequest {
    enum selection {
        fullRun,   ///< all tests at the standard resolution
        namedTests ///< the named tests
    };

    selection wanted = fullRun;
    QStringList tests;                          ///< exact names, in the order given
    QString resolution;                         ///< "widthxheight", empty for the standard one
    int testTime = benchBase::standardTestTime; ///< milliseconds
    std::optional<int> repetitions;             ///< how often all of it is done, if it was said
    int warmUpSeconds = 0;
    int idleSeconds = 0;        ///< how long quiet is waited for
    std::optional<int> threads; ///< of the multi-core tests, other than the machine's
    bool isPinned = false;
    bool isVerified = false;
    bool isQuiet = false;
    bool isUpload = false; ///< a full run's results go to the online database
    QString server;        ///< its "host" or "host:port", with "https://" for TLS
    outputFiles output;

    /// Whether the machine works as it does for everybody, so that results may be stored.
    bool isOrdinary() const { return !threads && !isPinned; }
};

/// The lists of tests and resolutions.
struct listRequest {
    QString json; ///< where to write them for programs; empty for people
};

struct verifyRequest {
};

struct historyRequest {
};

struct showRequest {
    QString run; ///< empty for the last one
    outputFiles output;
};

struct compareRequest {
    QString first;  ///< empty for the last run
    QString second; ///< empty for the last run, or for the one before it
    QString with;   ///< a machine of the list in place of the second
};

struct doctorRequest {
};

struct completionRequest {
    QString shell;
};

struct completeRequest {
    QStringList words;
};

struct manualRequest {
};

/// What the arguments of the console runner ask for.
using request =
    std::variant<runRequest, listRequest, verifyRequest, historyRequest, showRequest,
                 compareRequest, doctorRequest, completionRequest, completeRequest, manualRequest>;
