// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/resultStore.h"

#include "server/rules/sourceToken.h"
#include "server/schema.h"
#include "server/versions.h"

#include <QHash>

#include <algorithm>

namespace
{

const QString uploadColumns =
    QStringLiteral("id, hash, received, state, reason, content, is_empty, source, group_key");
const QString listColumns = QStringLiteral("version, is_beta, made, content");

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
    upload.source = row.value(7).toString().toLatin1();
    upload.group = row.value(8).toString();
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

} // namespace

outcome<void> resultStore::open()
{
    if (db.isOpen())
        return {};
    const outcome<void> done = db.open().and_then(
        [this] { return db.use() == databaseUse::reading ? checkSchema(db) : prepareSchema(db); });
    if (!done)
        db.close();
    return done;
}

outcome<void> resultStore::checkWritable()
{
    // As much as a large upload takes.
    const QString content(8'000, QLatin1Char('x'));
    return db.write([&] {
        return db.change(QStringLiteral("INSERT INTO write_probe (content) VALUES (?)"), {content})
            .and_then([this] { return db.change(QStringLiteral("DELETE FROM write_probe")); });
    });
}

outcome<QByteArray> resultStore::sourceKey(qint64 day)
{
    QByteArray key;
    const outcome<void> isRead =
        db.read(QStringLiteral("SELECT day_key FROM source_keys WHERE day = ? OR day = ?"
                               " ORDER BY day DESC LIMIT 1"),
                {day, day + 1}, [&key](const QSqlQuery &row) {
                    key = QByteArray::fromHex(row.value(0).toString().toLatin1());
                });
    if (!isRead || !key.isEmpty())
        return isRead.map([&key] { return key; });
    key = newDayKey();
    return db.change(QStringLiteral("DELETE FROM source_keys"))
        .and_then([&] {
            return db.change(QStringLiteral("INSERT INTO source_keys (day, day_key) VALUES (?, ?)"),
                             {day, QString::fromLatin1(key.toHex())});
        })
        .map([&key] { return key; });
}

outcome<void> resultStore::forgetSourceKeys(qint64 today)
{
    return db.write([&] {
        return db.change(QStringLiteral("DELETE FROM source_keys WHERE day < ? OR day > ?"),
                         {today, today + 1});
    });
}

outcome<qint64> resultStore::nextChange()
{
    return db.number(QStringLiteral("SELECT max(changed) FROM uploads")).map([](qint64 last) {
        return last + 1;
    });
}

outcome<void> resultStore::addAuditLine(const QString &command, const QString &uploads,
                                        const QString &reason)
{
    return db.change(QStringLiteral("INSERT INTO audit (time, command, uploads, reason)"
                                    " VALUES (?, ?, ?, ?)"),
                     {QDateTime::currentMSecsSinceEpoch(), command, uploads, reason});
}

outcome<void> resultStore::insert(const QVector<storedUpload> &uploads)
{
    if (uploads.isEmpty())
        return {};
    const outcome<qint64> change = nextChange();
    if (!change)
        return failure(change.error());
    QVector<QVariantList> columns(9);
    for (const storedUpload &upload : uploads) {
        const QVariant values[] = {QString::fromLatin1(upload.hash),
                                   upload.received,
                                   upload.state,
                                   upload.reason,
                                   QString::fromUtf8(upload.content),
                                   upload.isEmpty ? 1 : 0,
                                   QString::fromLatin1(upload.source),
                                   upload.group,
                                   *change};
        for (int i = 0; i < columns.size(); ++i)
            columns[i].append(values[i]);
    }
    return db.executeForEach(
        QStringLiteral("INSERT INTO uploads (hash, received, state, reason, content, is_empty,"
                       " source, group_key, changed) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)"
                       " ON CONFLICT (hash) DO NOTHING"),
        columns);
}

outcome<void> resultStore::insertLists(const QVector<storedList> &newLists)
{
    outcome<void> done;
    for (const storedList &list : newLists) {
        done = done.and_then([&] {
            return db.change(QStringLiteral("INSERT INTO lists (%1) VALUES (?, ?, ?, ?)"
                                            " ON CONFLICT (version, is_beta) DO NOTHING")
                                 .arg(listColumns),
                             {list.version, list.isBeta ? 1 : 0, list.made, list.content});
        });
    }
    return done;
}

outcome<void> resultStore::add(const QVector<storedUpload> &uploads)
{
    return db.write([&]() -> outcome<void> {
        QVector<storedUpload> withTokens = uploads;
        QHash<qint64, QByteArray> keys;
        for (storedUpload &upload : withTokens) {
            if (upload.network.isEmpty())
                continue;
            const qint64 day = dayOf(upload.received);
            if (!keys.contains(day)) {
                const outcome<QByteArray> key = sourceKey(day);
                if (!key)
                    return failure(key.error());
                keys.insert(day, *key);
            }
            upload.source = sourceToken(upload.network, keys.value(day));
        }
        return insert(withTokens);
    });
}

outcome<int> resultStore::newestVersion()
{
    return db.number(QStringLiteral("SELECT max(version) FROM lists")).map([](qint64 newest) {
        return newest == 0 ? builtInListVersion : static_cast<int>(newest);
    });
}

outcome<storedList> resultStore::newestList(bool isBeta)
{
    storedList newest;
    return db
        .read(QStringLiteral("SELECT %1 FROM lists WHERE is_beta = ? ORDER BY version DESC LIMIT 1")
                  .arg(listColumns),
              {isBeta ? 1 : 0}, [&newest](const QSqlQuery &row) { newest = listIn(row); })
        .map([&newest] { return newest; });
}

outcome<uploadCounts> resultStore::countUploads()
{
    uploadCounts counts;
    return db
        .read(QStringLiteral("SELECT state, count(*) FROM uploads GROUP BY state"), {},
              [&counts](const QSqlQuery &row) {
                  counts.insert(row.value(0).toString(), row.value(1).toLongLong());
              })
        .map([&counts] { return counts; });
}

outcome<void> resultStore::forEachUpload(const QString &which, const QVariantList &values,
                                         const std::function<void(const storedUpload &)> &take)
{
    QString damaged;
    const QString order = which.isEmpty() ? QStringLiteral("ORDER BY id") : which;
    return db
        .read(QStringLiteral("SELECT %1 FROM uploads %2").arg(uploadColumns, order), values,
              [&](const QSqlQuery &row) {
                  const storedUpload upload = uploadIn(row);
                  if (uploadHash(upload.content) == upload.hash)
                      take(upload);
                  else if (damaged.isEmpty())
                      damaged = QStringLiteral("upload %1 is damaged").arg(upload.id);
              })
        .and_then([&damaged]() -> outcome<void> {
            return damaged.isEmpty() ? outcome<void>() : failure(damaged);
        });
}

outcome<void> resultStore::forEachList(const std::function<void(const storedList &)> &take)
{
    return db.read(
        QStringLiteral("SELECT %1 FROM lists ORDER BY version, is_beta").arg(listColumns), {},
        [&take](const QSqlQuery &row) { take(listIn(row)); });
}

outcome<bool> resultStore::withdraw(qint64 id, const QString &reason)
{
    return db.write([&] {
        return nextChange()
            .and_then([&](qint64 change) {
                return db.execute(QStringLiteral("UPDATE uploads SET state = 'withdrawn',"
                                                 " reason = ?, changed = ? WHERE id = ?"),
                                  {reason, change, id});
            })
            .map([](const QSqlQuery &done) { return done.numRowsAffected() > 0; });
    });
}

outcome<void> resultStore::restore(const QVector<storedUpload> &uploads,
                                   const QVector<storedList> &newLists)
{
    return db.write(
        [&] { return insert(uploads).and_then([&] { return insertLists(newLists); }); });
}
