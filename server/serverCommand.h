// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/options.h"
#include "server/operatorOptions.h"
#include "server/publication.h"
#include "server/resultServer.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Where to listen.
struct listenAddress {
    QString host; ///< an address, or a name
    int port = 0; ///< 0 for a free one
};

/// What the arguments of fennick-server ask for.
struct serverCommand {
    enum action {
        serve,
        publish,
        importFile,
        exportAll,
        list,
        withdraw,
        restore,
        acceptHeld,
        forget
    };

    action wanted = serve;
    serverOptions options;
    listenAddress listen = {QStringLiteral("127.0.0.1"), 8426};
    std::optional<listenAddress> metrics; ///< nowhere if absent
    QString file;                         ///< to import
    bool isEndOptional = false; ///< imports an old export, which says nothing about its end
    operatorRequest request;
    publishOptions publishing;
    bool isDryRun = false; ///< shows what would change, and changes nothing
};

/// Reads @p arguments, the program's own name first. @p defaultDatabase is the file that is used
/// where none is named.
parsed<serverCommand> parseServerCommand(const QStringList &arguments,
                                         const QString &defaultDatabase);

/// The program's name, as its messages begin with it.
QString serverProgramName();
