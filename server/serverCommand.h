// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultServer.h"

#include <QString>
#include <QStringList>

/// What the arguments of fennick-server ask for.
struct serverCommand {
    enum action {
        serve,
        publish,
        importFile,
        exportAll,
        withdraw,
        list,
        showText, ///< message goes to standard output: help, version
        showError ///< message goes to standard error
    };

    action wanted = showError;
    serverOptions options;
    QString address = QStringLiteral("127.0.0.1");
    int port = 8426;
    QString file;   ///< to import
    qint64 id = 0;  ///< of the upload to withdraw
    QString reason; ///< why it is withdrawn
    QString message;
};

/// Reads @p arguments, the program's own name first. @p defaultDatabase is the file that is used
/// where none is named.
serverCommand parseServerCommand(const QStringList &arguments, const QString &defaultDatabase);
