// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QVariant>

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
    QString options; ///< for the database's library, "sslmode=require;sslrootcert=FILE"
};

/// Reads "sqlite:FILE" or "postgresql://[USER[:PASSWORD]@][HOST][:PORT]/NAME[?host=DIRECTORY]",
/// with sslmode and the like after the question mark too.
std::optional<databaseAddress> parseDatabaseAddress(const QString &text);

/// One connection, which only the thread that made it may use.
class database
{
public:
    explicit database(const databaseAddress &place);
    database(const database &) = delete;
    database &operator=(const database &) = delete;
    ~database();

    /// Opens the connection unless it is open.
    outcome<void> open();
    bool isOpen() const { return QSqlDatabase::contains(connectionName); }
    void close();
    bool isSqlite() const { return address.product == databaseAddress::sqlite; }

    /// Executes @p sql with @p values for its question marks, in their order.
    outcome<QSqlQuery> execute(const QString &sql, const QVariantList &values = {});
    /// Executes @p sql once for each row of @p columns, which have one length.
    outcome<void> executeForEach(const QString &sql, const QVector<QVariantList> &columns);

    /// Begins a transaction that writes, after others that write have ended.
    outcome<void> beginWriting();
    outcome<void> commit();
    void rollback();

private:
    void configure();

    databaseAddress address;
    QString connectionName;
};
