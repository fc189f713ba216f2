// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/database.h"

#include <QDir>
#include <QFileInfo>
#include <QSqlError>
#include <QUrl>
#include <QUrlQuery>

#include <atomic>

namespace
{

/// Any number that all processes at one database agree on.
constexpr int writersLock = 8426;

QString uniqueName()
{
    static std::atomic<int> count = 0;
    return QStringLiteral("connection %1").arg(++count);
}

} // namespace

std::optional<databaseAddress> parseDatabaseAddress(const QString &text)
{
    const QString filePrefix = QStringLiteral("sqlite:");
    databaseAddress address;
    if (text.startsWith(filePrefix)) {
        address.name = text.mid(filePrefix.size());
        return address.name.isEmpty() ? std::nullopt : std::make_optional(address);
    }
    const QUrl url(text);
    if (!url.isValid()
        || (url.scheme() != QLatin1String("postgresql")
            && url.scheme() != QLatin1String("postgres")))
        return std::nullopt;
    address.product = databaseAddress::postgresql;
    address.name = url.path().mid(1);
    address.host = url.host();
    address.port = url.port();
    address.user = url.userName();
    address.password = url.password();
    QStringList options(QStringLiteral("connect_timeout=5"));
    for (const auto &[key, value] : QUrlQuery(url).queryItems(QUrl::FullyDecoded)) {
        if (key == QLatin1String("host"))
            address.host = value;
        else
            options.append(key + QLatin1Char('=') + value);
    }
    address.options = options.join(QLatin1Char(';'));
    return address.name.isEmpty() ? std::nullopt : std::make_optional(address);
}

database::database(const databaseAddress &place) : address(place), connectionName(uniqueName()) {}

database::~database()
{
    close();
}

void database::close()
{
    QSqlDatabase::removeDatabase(connectionName);
}

bool database::open()
{
    if (isOpen())
        return true;
    bool isConnected = false;
    {
        QSqlDatabase connection = QSqlDatabase::addDatabase(
            isSqlite() ? QStringLiteral("QSQLITE") : QStringLiteral("QPSQL"), connectionName);
        connection.setDatabaseName(address.name);
        if (isSqlite()) {
            QDir().mkpath(QFileInfo(address.name).absolutePath());
            connection.setConnectOptions(QStringLiteral("QSQLITE_BUSY_TIMEOUT=20000"));
        } else {
            connection.setHostName(address.host);
            connection.setPort(address.port);
            connection.setUserName(address.user);
            connection.setPassword(address.password);
            connection.setConnectOptions(address.options);
        }
        isConnected = connection.open();
        lastError = connection.lastError().text().trimmed();
        if (isConnected)
            configure();
    }
    if (!isConnected)
        close();
    return isConnected;
}

void database::configure()
{
    if (!isSqlite()) { // which tables are there already is of no interest
        execute(QStringLiteral("SET client_min_messages = warning"));
        return;
    }
    // Readers go on while one writes, and what is committed is on the disk.
    execute(QStringLiteral("PRAGMA journal_mode = WAL"));
    execute(QStringLiteral("PRAGMA synchronous = FULL"));
}

bool database::note(const QSqlQuery &query, bool isDone)
{
    if (!isDone)
        lastError = query.lastError().text().trimmed();
    return isDone;
}

std::optional<QSqlQuery> database::execute(const QString &sql, const QVariantList &values)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    query.setForwardOnly(true);
    if (values.isEmpty())
        return note(query, query.exec(sql)) ? std::make_optional(query) : std::nullopt;
    if (!note(query, query.prepare(sql)))
        return std::nullopt;
    for (const QVariant &value : values)
        query.addBindValue(value);
    return note(query, query.exec()) ? std::make_optional(query) : std::nullopt;
}

bool database::executeForEach(const QString &sql, const QVector<QVariantList> &columns)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    if (!note(query, query.prepare(sql)))
        return false;
    for (const QVariantList &column : columns)
        query.addBindValue(column);
    return note(query, query.execBatch());
}

bool database::beginWriting()
{
    if (isSqlite())
        return execute(QStringLiteral("BEGIN IMMEDIATE")).has_value();
    return execute(QStringLiteral("BEGIN")).has_value()
           && execute(QStringLiteral("SELECT pg_advisory_xact_lock(?)"), {writersLock}).has_value();
}

bool database::commit()
{
    return execute(QStringLiteral("COMMIT")).has_value();
}

void database::rollback()
{
    execute(QStringLiteral("ROLLBACK"));
}
