// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

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

/// One connection. Used by the thread that made it alone.
class database
{
public:
    explicit database(const databaseAddress &place);
    database(const database &) = delete;
    database &operator=(const database &) = delete;
    ~database();

    /// Opens the connection unless it is open. False, with a text in error(), if it cannot.
    bool open();
    bool isOpen() const { return QSqlDatabase::contains(connectionName); }
    void close();
    QString error() const { return lastError; }
    bool isSqlite() const { return address.product == databaseAddress::sqlite; }

    /// Does what @p sql says, with @p values for its question marks in their order. Nothing if that
    /// failed, with a text in error().
    std::optional<QSqlQuery> execute(const QString &sql, const QVariantList &values = {});
    /// Does @p sql once for each of the values of @p columns, all of one length.
    bool executeForEach(const QString &sql, const QVector<QVariantList> &columns);

    /// Begins a transaction that writes, after others that write have ended.
    bool beginWriting();
    bool commit();
    void rollback();

private:
    void configure();
    bool note(const QSqlQuery &query, bool isDone);

    databaseAddress address;
    QString connectionName;
    QString lastError;
};
