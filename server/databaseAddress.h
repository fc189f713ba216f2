// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <optional>

/// Where the results are kept.
struct databaseAddress {
    enum kind { sqlite, postgresql };

    kind product = sqlite;
    QString name; ///< the file, or the database's name
    QString host; ///< a name, or the directory of a socket
    int port = -1;
    QString user;
    QString password;
    QString options; ///< for the database's library, "sslmode='require';sslrootcert='FILE'"
    /// Milliseconds, 0 for no limit. What the address does not name depends on what the connection
    /// is for.
    std::optional<int> lockTimeout;
    std::optional<int> statementTimeout; ///< not for SQLite, which works in the caller's thread
};

/// Reads "sqlite:FILE" or "postgresql://[USER[:PASSWORD]@][HOST][:PORT]/NAME[?host=DIRECTORY]",
/// with sslmode and the like after the question mark too, and with lock_timeout and
/// statement_timeout in milliseconds.
std::optional<databaseAddress> parseDatabaseAddress(const QString &text);
