// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/countedStore.h"

#include "data/benchXml.h"
#include "server/storedUpload.h"
#include "server/uploadCheck.h"

#include <QElapsedTimer>
#include <QSet>

#include <algorithm>
#include <chrono>
#include <thread>

namespace
{

/// So many uploads are written in one transaction: it takes some ten milliseconds.
constexpr int batchSize = 1'000;

QString xmlOf(const std::optional<benchResults> &machine)
{
    return machine ? QString::fromUtf8(canonicalXml(*machine)) : QString();
}

QString columnOf(bool isBeta)
{
    return isBeta ? QStringLiteral("beta") : QStringLiteral("normal");
}

/// Executes @p sql for each row of @p columns, if there are any.
outcome<void> forEachRow(database &db, const char *sql, const QVector<QVariantList> &columns)
{
    return columns.first().isEmpty() ? outcome<void>()
                                     : db.executeForEach(QString::fromLatin1(sql), columns);
}

} // namespace

/// Uploads that have changed, as columns.
struct countedStore::changes {
    QVector<QVariantList> counting{3}; ///< group, number, content
    QVector<QVariantList> others{2};   ///< group, number
    QSet<QString> groups;
    qint64 last = 0;
    QString damage; ///< why they cannot be taken over
};

outcome<void> countedStore::write(const std::function<outcome<void>()> &work)
{
    QElapsedTimer clock;
    clock.start();
    const outcome<void> done = db.write([&] {
        return db.number(QStringLiteral("SELECT turn FROM publishing"))
            .and_then([&](qint64 current) -> outcome<void> {
                if (current == turn)
                    return work();
                return failure(QStringLiteral("somebody else has begun to publish"));
            });
    });
    giveWay(clock.elapsed());
    afterEachWrite();
    return done;
}

void countedStore::giveWay(qint64 milliseconds) const
{
    // SQLite's writers do not queue up but try now and then: leave them as much time as was taken.
    constexpr qint64 longest = 100;
    if (db.isSqlite())
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(milliseconds, longest)));
}

outcome<void> countedStore::begin(const QString &rules, bool isAfresh)
{
    QString packing;
    QString lastRules;
    return db.write([&] {
        return db.change(QStringLiteral("UPDATE publishing SET turn = turn + 1"))
            .and_then([&] {
                return db.read(QStringLiteral("SELECT turn, mark, packing, rules FROM publishing"),
                               {}, [&](const QSqlQuery &row) {
                                   turn = row.value(0).toLongLong();
                                   mark = row.value(1).toLongLong();
                                   packing = row.value(2).toString();
                                   lastRules = row.value(3).toString();
                               });
            })
            .and_then(
                [&] { return isAfresh || packing != packingName() ? forget() : outcome<void>(); })
            .and_then([&]() -> outcome<void> {
                if (rules == lastRules)
                    return {};
                return db.change(QStringLiteral("UPDATE verdicts SET is_touched = 1"))
                    .and_then([&] {
                        return db.change(QStringLiteral("UPDATE publishing SET rules = ?"),
                                         {rules});
                    });
            });
    });
}

outcome<void> countedStore::forget()
{
    mark = 0;
    const QString emptied =
        db.isSqlite() ? QStringLiteral("DELETE FROM ") : QStringLiteral("TRUNCATE ");
    return db.change(emptied + QStringLiteral("counted"))
        .and_then([&] { return db.change(emptied + QStringLiteral("verdicts")); })
        .and_then([this] {
            return db.change(QStringLiteral("UPDATE publishing SET mark = 0, packing = ?"),
                             {packingName()});
        });
}

outcome<void> countedStore::catchUp()
{
    const outcome<qint64> target = db.number(QStringLiteral("SELECT max(changed) FROM uploads"));
    if (!target)
        return failure(target.error());
    while (mark < *target) {
        // One number may stand for many changes, and all of them belong together.
        const outcome<void> done =
            db.number(QStringLiteral("SELECT max(changed) FROM (SELECT changed FROM uploads WHERE"
                                     " changed > ? AND changed <= ? ORDER BY changed LIMIT %1)"
                                     " AS next")
                          .arg(batchSize),
                      {mark, *target})
                .and_then([this](qint64 last) { return changesUpTo(last); })
                .and_then([this](const changes &batch) { return take(batch); });
        if (!done)
            return done;
    }
    return {};
}

outcome<countedStore::changes> countedStore::changesUpTo(qint64 last)
{
    changes batch;
    batch.last = last;
    const auto takeRow = [&batch](const QSqlQuery &row) {
        const QString group = row.value(1).toString();
        const QString state = row.value(2).toString();
        storedUpload upload;
        upload.content = row.value(6).toString().toUtf8();
        batch.groups.insert(group);
        if (uploadHash(upload.content) != row.value(7).toString().toLatin1())
            batch.damage = QStringLiteral("upload %1 is damaged").arg(row.value(0).toLongLong());
        const bool isCounting =
            (state == QLatin1String("received") || state == QLatin1String("published"))
            && row.value(3).toInt() == 0;
        const auto run = isCounting
                             ? countedRunOf(uploadedMachine(upload), row.value(4).toLongLong(),
                                            row.value(5).toString().toLatin1())
                             : std::nullopt;
        QVector<QVariantList> &columns = run ? batch.counting : batch.others;
        columns[0].append(group);
        columns[1].append(row.value(0));
        if (run)
            columns[2].append(packedRun(*run));
    };
    return db
        .read(QStringLiteral("SELECT id, group_key, state, is_empty, received, source, content,"
                             " hash FROM uploads WHERE changed > ? AND changed <= ?"
                             " AND group_key <> '' ORDER BY group_key, id"),
              {mark, last}, takeRow)
        .and_then([&]() -> outcome<changes> {
            return batch.damage.isEmpty() ? outcome<changes>(batch) : failure(batch.damage);
        });
}

outcome<void> countedStore::take(const changes &batch)
{
    QVector<QVariantList> groups(1);
    for (const QString &group : batch.groups)
        groups[0].append(group);
    const auto remember = [&] {
        return forEachRow(db,
                          "INSERT INTO counted (group_key, upload, content) VALUES (?, ?, ?)"
                          " ON CONFLICT (group_key, upload) DO UPDATE SET"
                          " content = excluded.content",
                          batch.counting)
            .and_then([&] {
                return forEachRow(db, "DELETE FROM counted WHERE group_key = ? AND upload = ?",
                                  batch.others);
            })
            .and_then([&] {
                return forEachRow(db,
                                  "INSERT INTO verdicts (group_key, is_touched, uploads, sources,"
                                  " first, normal, beta) VALUES (?, 1, 0, 0, 0, '', '')"
                                  " ON CONFLICT (group_key) DO UPDATE SET is_touched = 1",
                                  groups);
            })
            .and_then([&] {
                return db.change(QStringLiteral("UPDATE publishing SET mark = ?"), {batch.last});
            });
    };
    return write(remember).map([&] { mark = batch.last; });
}

outcome<QStringList> countedStore::touchedGroups()
{
    QStringList keys;
    return db
        .read(QStringLiteral("SELECT group_key FROM verdicts WHERE is_touched = 1"
                             " ORDER BY group_key"),
              {}, [&keys](const QSqlQuery &row) { keys.append(row.value(0).toString()); })
        .map([&keys] { return keys; });
}

outcome<QVector<countedRun>> countedStore::runsOf(const QString &key)
{
    QVector<countedRun> runs;
    return db
        .read(
            QStringLiteral("SELECT content FROM counted WHERE group_key = ?"), {key},
            [&runs](const QSqlQuery &row) { runs.append(unpackedRun(row.value(0).toByteArray())); })
        .map([&runs] { return runs; });
}

outcome<void> countedStore::store(const QVector<keyedVerdict> &verdicts)
{
    QVector<QVariantList> kept(6);
    QVector<QVariantList> forgotten(1);
    for (const keyedVerdict &group : verdicts) {
        if (group.uploads == 0) {
            forgotten[0].append(group.key);
            continue;
        }
        const QVariant values[] = {group.uploads,
                                   group.verdict.sources,
                                   group.verdict.first,
                                   xmlOf(group.verdict.normal),
                                   xmlOf(group.verdict.beta),
                                   group.key};
        for (int i = 0; i < kept.size(); ++i)
            kept[i].append(values[i]);
    }
    return write([&] {
        return forEachRow(db,
                          "UPDATE verdicts SET is_touched = 0, uploads = ?, sources = ?, first = ?,"
                          " normal = ?, beta = ? WHERE group_key = ?",
                          kept)
            .and_then([&] {
                return forEachRow(db, "DELETE FROM verdicts WHERE group_key = ?", forgotten);
            });
    });
}

outcome<QVector<listCandidate>> countedStore::candidates(bool isBeta, int most)
{
    QVector<listCandidate> found;
    // Those with most sources, and these in the order of their keys.
    return db
        .read(QStringLiteral("SELECT %1, sources, first FROM (SELECT * FROM verdicts WHERE %1 <> ''"
                             " ORDER BY sources DESC, first, group_key LIMIT %2) AS most"
                             " ORDER BY group_key")
                  .arg(columnOf(isBeta), QString::number(most)),
              {},
              [&found](const QSqlQuery &row) {
                  found.append({readMachines(row.value(0).toString().toUtf8()).value(0),
                                row.value(1).toInt(), row.value(2).toLongLong()});
              })
        .map([&found] { return found; });
}

outcome<qint64> countedStore::candidateCount(bool isBeta)
{
    return db.number(
        QStringLiteral("SELECT count(*) FROM verdicts WHERE %1 <> ''").arg(columnOf(isBeta)));
}

outcome<qint64> countedStore::uploadCount()
{
    return db.number(QStringLiteral("SELECT sum(uploads) FROM verdicts"));
}

outcome<void> countedStore::markPublished()
{
    const QString isNew = QStringLiteral("state = 'received' AND is_empty = 0 AND group_key <> ''"
                                         " AND changed <= ?");
    while (true) {
        const outcome<qint64> left =
            db.number(QStringLiteral("SELECT count(*) FROM (SELECT id FROM uploads WHERE %1"
                                     " LIMIT 1) AS one")
                          .arg(isNew),
                      {mark});
        if (!left || *left == 0)
            return left.map([](qint64) {});
        const outcome<void> done = write([&] {
            return db.change(QStringLiteral("UPDATE uploads SET state = 'published' WHERE id IN"
                                            " (SELECT id FROM uploads WHERE %1 ORDER BY changed"
                                            " LIMIT %2)")
                                 .arg(isNew, QString::number(batchSize)),
                             {mark});
        });
        if (!done)
            return done;
    }
}
