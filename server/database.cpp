// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/database.h"

#include "server/privateFile.h"

#include <QFileInfo>
#include <QSqlError>
#include <QUrl>

#include <algorithm>
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

/// The first line, in one sentence: the lines behind it may quote what was to be stored.
failure failureOf(const QSqlError &error)
{
    QString text = error.databaseText().section(QLatin1Char('\n'), 0, 0).simplified();
    if (text.startsWith(QLatin1String("ERROR: ")))
        text.remove(0, 7);
    return failure(text.isEmpty() ? error.text().simplified() : text);
}

/// The outcome of @p query, where @p isDone says whether it was executed.
outcome<void> outcomeOf(const QSqlQuery &query, bool isDone)
{
    return isDone ? outcome<void>() : failureOf(query.lastError());
}

/// A text that is null would be stored as NULL, which no column takes.
QVariant notNull(const QVariant &value)
{
    return value.type() == QVariant::String && value.toString().isNull() ? QStringLiteral("")
                                                                         : value;
}

/// The limits that @p address leaves to the connection's purpose are filled in.
databaseAddress withLimits(databaseAddress address, databaseUse purpose)
{
    const bool isServing = purpose == databaseUse::serving;
    address.lockTimeout = address.lockTimeout.value_or(isServing ? 5'000 : 30'000);
    address.statementTimeout = address.statementTimeout.value_or(isServing ? 5'000 : 0);
    return address;
}

} // namespace

database::database(const databaseAddress &place, databaseUse wanted)
    : address(withLimits(place, wanted)),
      purpose(wanted),
      connectionName(uniqueName())
{
}

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
    if (isSqlite() && purpose != databaseUse::reading) {
        if (const outcome<void> isThere = makePrivateFile(address.name); !isThere)
            return isThere;
    }
    const outcome<void> done =
        connect(QSqlDatabase::addDatabase(isSqlite() ? QStringLiteral("QSQLITE")
                                                     : QStringLiteral("QPSQL"),
                                          connectionName))
            .and_then([this] { return configure(); });
    if (!done)
        close();
    return done;
}

outcome<void> database::connect(QSqlDatabase connection)
{
    connection.setDatabaseName(address.name);
    if (isSqlite()) {
        QString options = QStringLiteral("QSQLITE_BUSY_TIMEOUT=%1").arg(*address.lockTimeout);
        if (purpose == databaseUse::reading) {
            const QString path = QFileInfo(address.name).absoluteFilePath();
            if (!QFileInfo::exists(path))
                return failure(QStringLiteral("there is no file '%1'").arg(address.name));
            // Without this mode the library makes a file that has gone meanwhile.
            connection.setDatabaseName(
                QStringLiteral("file:%1?mode=rw")
                    .arg(QString::fromLatin1(QUrl::toPercentEncoding(path, QByteArray("/")))));
            options += QStringLiteral(";QSQLITE_OPEN_URI");
        }
        connection.setConnectOptions(options);
    } else {
        connection.setHostName(address.host);
        connection.setPort(address.port);
        connection.setUserName(address.user);
        connection.setPassword(address.password);
        connection.setConnectOptions(address.options);
    }
    return connection.open() ? outcome<void>() : failureOf(connection.lastError());
}

outcome<void> database::configure()
{
    QStringList settings;
    if (isSqlite()) {
        // Readers need not wait for a writer, and what is committed is on the disk.
        settings = purpose == databaseUse::reading
                       ? QStringList(QStringLiteral("PRAGMA query_only = 1"))
                       : QStringList({QStringLiteral("PRAGMA journal_mode = WAL"),
                                      QStringLiteral("PRAGMA synchronous = FULL"),
                                      // What is deleted is gone: names, keys of sources.
                                      QStringLiteral("PRAGMA secure_delete = ON")});
    } else {
        settings = QStringList({
            QStringLiteral("SET lock_timeout = %1").arg(*address.lockTimeout),
            QStringLiteral("SET statement_timeout = %1").arg(*address.statementTimeout),
            // A process that is stopped in the middle must not keep others from writing for ever.
            QStringLiteral("SET idle_in_transaction_session_timeout = 60000"),
        });
        if (purpose == databaseUse::reading)
            settings.append(QStringLiteral("SET default_transaction_read_only = on"));
    }
    outcome<void> done;
    for (const QString &setting : settings)
        done = done.and_then([&] { return change(setting); });
    return done;
}

outcome<QSqlQuery> database::execute(const QString &sql, const QVariantList &values)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    query.setForwardOnly(true);
    bool isDone = values.isEmpty() ? query.exec(sql) : query.prepare(sql);
    if (isDone && !values.isEmpty()) {
        for (const QVariant &value : values)
            query.addBindValue(notNull(value));
        isDone = query.exec();
    }
    return outcomeOf(query, isDone).map([&query] { return query; });
}

outcome<void> database::change(const QString &sql, const QVariantList &values)
{
    return execute(sql, values).map([](const QSqlQuery &) {});
}

outcome<void> database::read(const QString &sql, const QVariantList &values,
                             const std::function<void(const QSqlQuery &)> &take)
{
    auto found = execute(sql, values);
    if (!found)
        return failure(found.error());
    while (found->next())
        take(*found);
    // The end of the rows and an error in the middle look alike to next().
    return outcomeOf(*found, found->lastError().type() == QSqlError::NoError);
}

outcome<qint64> database::number(const QString &sql, const QVariantList &values)
{
    outcome<qint64> found = failure(QStringLiteral("the database has given no row"));
    const outcome<void> done =
        read(sql, values, [&found](const QSqlQuery &row) { found = row.value(0).toLongLong(); });
    return done.and_then([&found] { return found; });
}

outcome<void> database::executeForEach(const QString &sql, const QVector<QVariantList> &columns)
{
    QSqlQuery query(QSqlDatabase::database(connectionName, false));
    bool isDone = query.prepare(sql);
    if (isDone) {
        for (QVariantList column : columns) {
            std::transform(column.begin(), column.end(), column.begin(), notNull);
            query.addBindValue(column);
        }
        isDone = query.execBatch();
    }
    return outcomeOf(query, isDone);
}

outcome<void> database::beginWriting()
{
    if (isSqlite())
        return change(QStringLiteral("BEGIN IMMEDIATE"));
    const outcome<void> begun = change(QStringLiteral("BEGIN"));
    if (!begun)
        return begun;
    const outcome<void> isAlone =
        change(QStringLiteral("SELECT pg_advisory_xact_lock(%1)").arg(writersLock));
    if (!isAlone)
        execute(QStringLiteral("ROLLBACK"));
    return isAlone;
}

outcome<void> database::beginSnapshot()
{
    return change(isSqlite() ? QStringLiteral("BEGIN")
                             : QStringLiteral("BEGIN ISOLATION LEVEL REPEATABLE READ READ ONLY"));
}
