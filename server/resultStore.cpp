// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/resultStore.h"

#include <algorithm>

namespace
{

constexpr int schemaVersion = 1;

/// The tables. The two products differ in the words for some types.
QStringList tables(bool isSqlite)
{
    const QString number = isSqlite ? QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT")
                                    : QStringLiteral("BIGSERIAL PRIMARY KEY");
    const QString bytes = isSqlite ? QStringLiteral("BLOB") : QStringLiteral("BYTEA");
    return {
        QStringLiteral("CREATE TABLE IF NOT EXISTS schema_version (version INTEGER NOT NULL)"),
        QStringLiteral("CREATE TABLE IF NOT EXISTS uploads ("
                       " id %1,"
                       " hash TEXT NOT NULL UNIQUE,"
                       " received BIGINT NOT NULL,"
                       " state TEXT NOT NULL"
                       "  CHECK (state IN ('received', 'published', 'withdrawn')),"
                       " reason TEXT NOT NULL,"
                       " content TEXT NOT NULL,"
                       " is_empty INTEGER NOT NULL)")
            .arg(number),
        QStringLiteral("CREATE TABLE IF NOT EXISTS lists ("
                       " version INTEGER NOT NULL,"
                       " is_beta INTEGER NOT NULL,"
                       " made BIGINT NOT NULL,"
                       " content %1 NOT NULL,"
                       " PRIMARY KEY (version, is_beta))")
            .arg(bytes),
    };
}

storedUpload uploadIn(const QSqlQuery &row)
{
    storedUpload upload;
    upload.id = row.value(0).toLongLong();
    upload.hash = row.value(1).toString().toLatin1();
    upload.received = row.value(2).toLongLong();
    upload.state = row.value(3).toString();
    upload.reason = row.value(4).toString();
    upload.content = row.value(5).toString().toUtf8();
    upload.isEmpty = row.value(6).toInt() != 0;
    return upload;
}

storedList listIn(const QSqlQuery &row)
{
    storedList list;
    list.version = row.value(0).toInt();
    list.isBeta = row.value(1).toInt() != 0;
    list.made = row.value(2).toLongLong();
    list.content = row.value(3).toByteArray();
    return list;
}

/// Whether a statement has worked, for one whose rows are of no interest, or have been read.
outcome<void> withoutRows(const outcome<QSqlQuery> &done)
{
    return done.map([](const QSqlQuery &) {});
}

} // namespace

template <typename Value>
outcome<Value> resultStore::write(const std::function<outcome<Value>()> &work)
{
    if (const outcome<void> begun = db.beginWriting(); !begun)
        return failure(begun.error());
    outcome<Value> done = work();
    if (done) {
        const outcome<void> isCommitted = db.commit();
        if (isCommitted)
            return done;
        done = failure(isCommitted.error());
    }
    db.rollback();
    return done;
}

outcome<void> resultStore::open()
{
    if (db.isOpen())
        return {};
    outcome<void> done =
        db.open().and_then([this] { return write<void>([this] { return createTables(); }); });
    if (!done)
        db.close();
    return done;
}

outcome<void> resultStore::createTables()
{
    for (const QString &table : tables(db.isSqlite())) {
        if (const auto made = db.execute(table); !made)
            return failure(made.error());
    }
    return checkSchema();
}

outcome<void> resultStore::checkSchema()
{
    auto found = db.execute(QStringLiteral("SELECT version FROM schema_version"));
    if (!found)
        return failure(found.error());
    const bool isNew = !found->next();
    const int version = isNew ? schemaVersion : found->value(0).toInt();
    found->finish();
    if (version != schemaVersion) {
        return failure(QStringLiteral("the database has schema %1, this program needs %2")
                           .arg(QString::number(version), QString::number(schemaVersion)));
    }
    if (!isNew)
        return {};
    return withoutRows(
        db.execute(QStringLiteral("INSERT INTO schema_version VALUES (?)"), {schemaVersion}));
}

outcome<void> resultStore::insert(const QVector<storedUpload> &uploads)
{
    if (uploads.isEmpty())
        return {};
    QVector<QVariantList> columns(6);
    for (const storedUpload &upload : uploads) {
        columns[0].append(QString::fromLatin1(upload.hash));
        columns[1].append(upload.received);
        columns[2].append(upload.state);
        columns[3].append(upload.reason.isNull() ? QStringLiteral("") : upload.reason);
        columns[4].append(QString::fromUtf8(upload.content));
        columns[5].append(upload.isEmpty ? 1 : 0);
    }
    return db.executeForEach(
        QStringLiteral("INSERT INTO uploads (hash, received, state, reason, content, is_empty)"
                       " VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (hash) DO NOTHING"),
        columns);
}

outcome<void> resultStore::insertList(const storedList &list)
{
    return withoutRows(
        db.execute(QStringLiteral("INSERT INTO lists (version, is_beta, made, content)"
                                  " VALUES (?, ?, ?, ?) ON CONFLICT (version, is_beta) DO NOTHING"),
                   {list.version, list.isBeta ? 1 : 0, list.made, list.content}));
}

outcome<void> resultStore::add(const QVector<storedUpload> &uploads)
{
    return write<void>([&] { return insert(uploads); });
}

outcome<void> resultStore::checkWritable()
{
    return write<void>([] { return outcome<void>(); });
}

outcome<int> resultStore::newestVersion()
{
    auto found = db.execute(QStringLiteral("SELECT max(version) FROM lists"));
    if (!found)
        return failure(found.error());
    if (!found->next())
        return failure(QStringLiteral("the database has given no version"));
    return found->isNull(0) ? builtInVersion : found->value(0).toInt();
}

outcome<storedList> resultStore::newestList(bool isBeta)
{
    auto found = db.execute(QStringLiteral("SELECT version, is_beta, made, content FROM lists"
                                           " WHERE is_beta = ? ORDER BY version DESC LIMIT 1"),
                            {isBeta ? 1 : 0});
    if (!found)
        return failure(found.error());
    return found->next() ? listIn(*found) : storedList();
}

outcome<void> resultStore::forEachUpload(const std::function<void(const storedUpload &)> &take)
{
    auto found = db.execute(QStringLiteral("SELECT id, hash, received, state, reason, content,"
                                           " is_empty FROM uploads ORDER BY id"));
    while (found && found->next())
        take(uploadIn(*found));
    return withoutRows(found);
}

outcome<void> resultStore::forEachList(const std::function<void(const storedList &)> &take)
{
    auto found = db.execute(QStringLiteral("SELECT version, is_beta, made, content FROM lists"
                                           " ORDER BY version, is_beta"));
    while (found && found->next())
        take(listIn(*found));
    return withoutRows(found);
}

outcome<bool> resultStore::withdraw(qint64 id, const QString &reason)
{
    return write<bool>([&] {
        return db
            .execute(QStringLiteral("UPDATE uploads SET state = 'withdrawn', reason = ?"
                                    " WHERE id = ?"),
                     {reason, id})
            .map([](const QSqlQuery &done) { return done.numRowsAffected() > 0; });
    });
}

outcome<int> resultStore::publish(const std::function<void(const storedUpload &)> &take,
                                  const listMaker &make)
{
    return write<int>([&] { return insertNextLists(take, make); });
}

outcome<int> resultStore::insertNextLists(const std::function<void(const storedUpload &)> &take,
                                          const listMaker &make)
{
    const outcome<int> newest = newestVersion();
    qint64 lastUpload = 0;
    const outcome<void> isRead = newest.and_then([&](int) {
        return forEachUpload([&](const storedUpload &upload) {
            lastUpload = upload.id;
            take(upload);
        });
    });
    if (!isRead)
        return failure(isRead.error());
    const int version = std::max(*newest, builtInVersion) + 1;
    const lists made = make();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    return insertList({version, false, now, made.normal})
        .and_then([&] {
            return insertList({version, true, now, made.beta});
        })
        // One that arrived since the uploads were read is not in the list.
        .and_then([&] {
            return withoutRows(
                db.execute(QStringLiteral("UPDATE uploads SET state = 'published' WHERE"
                                          " state = 'received' AND is_empty = 0 AND id <= ?"),
                           {lastUpload}));
        })
        .map([version] { return version; });
}

outcome<void> resultStore::restore(const QVector<storedUpload> &uploads,
                                   const QVector<storedList> &newLists)
{
    return write<void>([&] {
        outcome<void> done = insert(uploads);
        for (const storedList &list : newLists)
            done = done.and_then([&] { return insertList(list); });
        return done;
    });
}
