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

/// The key of the lock that orders writers in PostgreSQL; all processes must use the same.
constexpr int writersLock = 8426;

QString uniqueName()
{
    static std::atomic<int> count = 0;
    return QStringLiteral("connection %1").arg(++count);
}

failure failureOf(const QSqlError &error)
{
    return failure(error.text().trimmed());
}

/// The outcome of @p query, where @p isDone says whether it was executed.
outcome<void> outcomeOf(const QSqlQuery &query, bool isDone)
{
    return isDone ? outcome<void>() : failureOf(query.lastError());
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

outcome<void> database::open()
{
    if (isOpen())
        return {};
    outcome<void> done;
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
        if (connection.open())
            configure();
        else
            done = failureOf(connection.lastError());
    }
    if (!done)
        close(); // not before the connection has gone out of scope
    return done;
}

void database::configure()
{
    if (!isSqlite()) { // no notices about tables that exist already
        execute(QStringLiteral("SET client_min_messages = warning"));
        return;
    }
    // Readers need not wait for a writer, and what is committed is on the disk.
    execute(QStringLiteral("PRAGMA journal_mode = WAL"));
    execute(QStringLiteral("PRAGMA synchronous = FULL"));
}

outcome<QSqlQuery> database::execute(const QString &sql, const QVariantList &values)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    query.setForwardOnly(true);
    bool isDone = values.isEmpty() ? query.exec(sql) : query.prepare(sql);
    if (isDone && !values.isEmpty()) {
        for (const QVariant &value : values)
            query.addBindValue(value);
        isDone = query.exec();
    }
    return outcomeOf(query, isDone).map([&query] { return query; });
}

outcome<void> database::executeForEach(const QString &sql, const QVector<QVariantList> &columns)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    bool isDone = query.prepare(sql);
    if (isDone) {
        for (const QVariantList &column : columns)
            query.addBindValue(column);
        isDone = query.execBatch();
    }
    return outcomeOf(query, isDone);
}

outcome<void> database::beginWriting()
{
    const auto done = [](const QSqlQuery &) {};
    if (isSqlite())
        return execute(QStringLiteral("BEGIN IMMEDIATE")).map(done);
    outcome<void> begun = execute(QStringLiteral("BEGIN")).map(done);
    if (!begun)
        return begun;
    outcome<void> isAlone =
        execute(QStringLiteral("SELECT pg_advisory_xact_lock(?)"), {writersLock}).map(done);
    if (!isAlone)
        rollback();
    return isAlone;
}

outcome<void> database::commit()
{
    return execute(QStringLiteral("COMMIT")).map([](const QSqlQuery &) {});
}

void database::rollback()
{
    execute(QStringLiteral("ROLLBACK"));
}
