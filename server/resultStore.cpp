// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/resultStore.h"

#include <algorithm>

namespace
{

constexpr int schemaVersion = 1;

/// The tables, for both products but for the words that differ.
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

storedUpload uploadOf(const QSqlQuery &row)
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

storedList listOf(const QSqlQuery &row)
{
    storedList list;
    list.version = row.value(0).toInt();
    list.isBeta = row.value(1).toInt() != 0;
    list.made = row.value(2).toLongLong();
    list.content = row.value(3).toByteArray();
    return list;
}

} // namespace

QString resultStore::error() const
{
    return ownError.isEmpty() ? db.error() : ownError;
}

bool resultStore::open()
{
    ownError.clear();
    if (db.isOpen())
        return true;
    if (!db.open())
        return false;
    if (createTables())
        return true;
    db.close();
    return false;
}

bool resultStore::createTables()
{
    if (!db.beginWriting())
        return false;
    for (const QString &table : tables(db.isSqlite())) {
        if (!db.execute(table))
            return finish(false);
    }
    auto found = db.execute(QStringLiteral("SELECT version FROM schema_version"));
    if (!found)
        return finish(false);
    if (!found->next()) {
        found->finish();
        return finish(
            db.execute(QStringLiteral("INSERT INTO schema_version VALUES (?)"), {schemaVersion})
                .has_value());
    }
    const int version = found->value(0).toInt();
    found->finish();
    if (version != schemaVersion) {
        finish(false);
        ownError = QStringLiteral("the database has schema %1, this program needs %2")
                       .arg(QString::number(version), QString::number(schemaVersion));
        return false;
    }
    return finish(true);
}

bool resultStore::finish(bool isDone)
{
    if (isDone && db.commit())
        return true;
    ownError = db.error(); // undoing may leave another one, or none
    db.rollback();
    return false;
}

bool resultStore::insert(const QVector<storedUpload> &uploads)
{
    QVector<QVariantList> columns(6);
    for (const storedUpload &upload : uploads) {
        columns[0].append(QString::fromLatin1(upload.hash));
        columns[1].append(upload.received);
        columns[2].append(upload.state);
        columns[3].append(upload.reason.isNull() ? QStringLiteral("") : upload.reason);
        columns[4].append(QString::fromUtf8(upload.content));
        columns[5].append(upload.isEmpty ? 1 : 0);
    }
    return uploads.isEmpty()
           || db.executeForEach(
               QStringLiteral("INSERT INTO uploads"
                              " (hash, received, state, reason, content, is_empty)"
                              " VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (hash) DO NOTHING"),
               columns);
}

bool resultStore::insertList(const storedList &list)
{
    return db
        .execute(QStringLiteral("INSERT INTO lists (version, is_beta, made, content)"
                                " VALUES (?, ?, ?, ?) ON CONFLICT (version, is_beta) DO NOTHING"),
                 {list.version, list.isBeta ? 1 : 0, list.made, list.content})
        .has_value();
}

bool resultStore::add(const QVector<storedUpload> &uploads)
{
    ownError.clear();
    return db.beginWriting() && finish(insert(uploads));
}

std::optional<int> resultStore::newestVersion()
{
    ownError.clear();
    auto found = db.execute(QStringLiteral("SELECT max(version) FROM lists"));
    if (!found || !found->next())
        return std::nullopt;
    return found->isNull(0) ? builtInVersion : found->value(0).toInt();
}

std::optional<storedList> resultStore::newestList(bool isBeta)
{
    ownError.clear();
    auto found = db.execute(QStringLiteral("SELECT version, is_beta, made, content FROM lists"
                                           " WHERE is_beta = ? ORDER BY version DESC LIMIT 1"),
                            {isBeta ? 1 : 0});
    if (!found)
        return std::nullopt;
    return found->next() ? listOf(*found) : storedList();
}

bool resultStore::forEachUpload(const std::function<void(const storedUpload &)> &take)
{
    ownError.clear();
    auto found = db.execute(QStringLiteral("SELECT id, hash, received, state, reason, content,"
                                           " is_empty FROM uploads ORDER BY id"));
    while (found && found->next())
        take(uploadOf(*found));
    return found.has_value();
}

bool resultStore::forEachList(const std::function<void(const storedList &)> &take)
{
    ownError.clear();
    auto found = db.execute(QStringLiteral("SELECT version, is_beta, made, content FROM lists"
                                           " ORDER BY version, is_beta"));
    while (found && found->next())
        take(listOf(*found));
    return found.has_value();
}

bool resultStore::withdraw(qint64 id, const QString &reason, bool &isFound)
{
    ownError.clear();
    if (!db.beginWriting())
        return false;
    const auto done = db.execute(
        QStringLiteral("UPDATE uploads SET state = 'withdrawn', reason = ? WHERE id = ?"),
        {reason, id});
    isFound = done && done->numRowsAffected() > 0;
    return finish(done.has_value());
}

std::optional<int> resultStore::publish(const std::function<void(const storedUpload &)> &take,
                                        const listMaker &make)
{
    ownError.clear();
    if (!db.beginWriting())
        return std::nullopt;
    const std::optional<int> newest = newestVersion();
    qint64 lastUpload = 0;
    const bool isRead = newest && forEachUpload([&](const storedUpload &upload) {
                            lastUpload = upload.id;
                            take(upload);
                        });
    if (!isRead) {
        finish(false);
        return std::nullopt;
    }
    const int version = std::max(*newest, builtInVersion) + 1;
    const lists made = make();
    const qint64 now = QDateTime::currentMSecsSinceEpoch();
    // One that arrived since the uploads were read is not in the list.
    const bool isDone =
        insertList({version, false, now, made.normal})
        && insertList({version, true, now, made.beta})
        && db.execute(QStringLiteral("UPDATE uploads SET state = 'published' WHERE"
                                     " state = 'received' AND is_empty = 0 AND id <= ?"),
                      {lastUpload});
    return finish(isDone) ? std::make_optional(version) : std::nullopt;
}

bool resultStore::restore(const QVector<storedUpload> &uploads, const QVector<storedList> &newLists)
{
    ownError.clear();
    if (!db.beginWriting())
        return false;
    bool isDone = insert(uploads);
    for (const storedList &list : newLists)
        isDone = isDone && insertList(list);
    return finish(isDone);
}
