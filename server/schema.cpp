// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/schema.h"

#include "engine/benchResults.h"
#include "server/storedUpload.h"

namespace
{

/// The table of uploads.
///
/// content is the machine in its canonical XML, and hash the SHA-256 of it. changed is the number
/// of the last change that publishing must know of; the next one is always higher, and changes
/// become visible in the order of their numbers, because writers wait for each other.
QStringList uploadTable(bool isSqlite)
{
    const QString number = isSqlite ? QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT")
                                    : QStringLiteral("BIGSERIAL PRIMARY KEY");
    const QString bytewise = isSqlite ? QString() : QStringLiteral(" COLLATE \"C\"");
    return {
        QStringLiteral("CREATE TABLE uploads ("
                       " id %1,"
                       " hash TEXT NOT NULL UNIQUE,"
                       " received BIGINT NOT NULL,"
                       " state TEXT NOT NULL CONSTRAINT uploads_state_check"
                       "  CHECK (state IN ('received', 'published', 'withdrawn', 'held')),"
                       " reason TEXT NOT NULL,"
                       " content TEXT NOT NULL,"
                       " is_empty INTEGER NOT NULL,"
                       " source TEXT NOT NULL,"
                       " group_key TEXT%2 NOT NULL,"
                       " changed BIGINT NOT NULL)")
            .arg(number, bytewise),
    };
}

/// Counting what is in each state reads this index alone.
const QString stateIndex = QStringLiteral("CREATE INDEX uploads_state ON uploads (state)");

/// What makes the tables of uploads fast to search.
QStringList uploadIndexes()
{
    return {
        QStringLiteral("CREATE INDEX uploads_group ON uploads (group_key)"),
        QStringLiteral("CREATE INDEX uploads_changed ON uploads (changed)"),
        // Those that the next publication marks as published.
        QStringLiteral("CREATE INDEX uploads_new ON uploads (changed)"
                       " WHERE state = 'received' AND is_empty = 0 AND group_key <> ''"),
        stateIndex,
    };
}

QStringList listTable(bool isSqlite)
{
    return {
        QStringLiteral("CREATE TABLE lists ("
                       " version INTEGER NOT NULL,"
                       " is_beta INTEGER NOT NULL,"
                       " made BIGINT NOT NULL,"
                       " content %1 NOT NULL,"
                       " PRIMARY KEY (version, is_beta))")
            .arg(isSqlite ? QStringLiteral("BLOB") : QStringLiteral("BYTEA")),
    };
}

/// What publishing keeps from one time to the next. All of it can be made again from the uploads.
///
/// counted has the uploads that count, up to the change with the number publishing.mark, packed;
/// verdicts what each group of them makes, or that this must be judged again; publishing.turn
/// tells which publication may write.
QStringList publishingTables(bool isSqlite)
{
    const QString bytes = isSqlite ? QStringLiteral("BLOB") : QStringLiteral("BYTEA");
    const QString bytewise = isSqlite ? QString() : QStringLiteral(" COLLATE \"C\"");
    return {
        QStringLiteral("CREATE TABLE publishing ("
                       " turn BIGINT NOT NULL,"
                       " mark BIGINT NOT NULL,"
                       " packing TEXT NOT NULL,"
                       " rules TEXT NOT NULL)"),
        QStringLiteral("INSERT INTO publishing VALUES (0, 0, '', '')"),
        QStringLiteral("CREATE TABLE counted ("
                       " group_key TEXT%1 NOT NULL,"
                       " upload BIGINT NOT NULL,"
                       " content %2 NOT NULL,"
                       " PRIMARY KEY (group_key, upload))%3")
            .arg(bytewise, bytes, isSqlite ? QStringLiteral(" WITHOUT ROWID") : QString()),
        QStringLiteral("CREATE TABLE verdicts ("
                       " group_key TEXT%1 NOT NULL PRIMARY KEY,"
                       " is_touched INTEGER NOT NULL,"
                       " uploads BIGINT NOT NULL,"
                       " sources BIGINT NOT NULL,"
                       " first BIGINT NOT NULL,"
                       " normal TEXT NOT NULL,"
                       " beta TEXT NOT NULL)")
            .arg(bytewise),
        QStringLiteral("CREATE INDEX verdicts_touched ON verdicts (group_key)"
                       " WHERE is_touched = 1"),
    };
}

/// What the operators did, the keys that make sources of one day comparable, and a table that is
/// always empty, which proves that something can be written.
QStringList otherTables(bool isSqlite)
{
    const QString number = isSqlite ? QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT")
                                    : QStringLiteral("BIGSERIAL PRIMARY KEY");
    return {
        QStringLiteral("CREATE TABLE audit ("
                       " id %1,"
                       " time BIGINT NOT NULL,"
                       " command TEXT NOT NULL,"
                       " uploads TEXT NOT NULL,"
                       " reason TEXT NOT NULL)")
            .arg(number),
        QStringLiteral("CREATE TABLE source_keys ("
                       " day BIGINT NOT NULL PRIMARY KEY,"
                       " day_key TEXT NOT NULL)"),
        QStringLiteral("CREATE TABLE write_probe (content TEXT NOT NULL)"),
    };
}

outcome<void> changeAll(database &db, const QStringList &statements)
{
    outcome<void> done;
    for (const QString &statement : statements)
        done = done.and_then([&] { return db.change(statement); });
    return done;
}

outcome<void> createTables(database &db)
{
    const bool isSqlite = db.isSqlite();
    return changeAll(
        db, QStringList(QStringLiteral("CREATE TABLE schema_version (version INTEGER NOT NULL)"))
                + uploadTable(isSqlite) + uploadIndexes() + listTable(isSqlite)
                + publishingTables(isSqlite) + otherTables(isSqlite)
                + QStringList(
                    QStringLiteral("INSERT INTO schema_version VALUES (%1)").arg(schemaVersion)));
}

/// The new columns of the uploads, with nothing in them. SQLite cannot change the condition for the
/// states, and so needs a new table.
QStringList widerUploads(bool isSqlite)
{
    if (!isSqlite) {
        return {
            QStringLiteral("ALTER TABLE uploads"
                           " ADD COLUMN source TEXT NOT NULL DEFAULT '',"
                           " ADD COLUMN group_key TEXT COLLATE \"C\" NOT NULL DEFAULT '',"
                           " ADD COLUMN changed BIGINT NOT NULL DEFAULT 0,"
                           " DROP CONSTRAINT uploads_state_check,"
                           " ADD CONSTRAINT uploads_state_check CHECK"
                           "  (state IN ('received', 'published', 'withdrawn', 'held'))"),
            QStringLiteral("ALTER TABLE uploads"
                           " ALTER COLUMN source DROP DEFAULT,"
                           " ALTER COLUMN group_key DROP DEFAULT,"
                           " ALTER COLUMN changed DROP DEFAULT"),
        };
    }
    return QStringList(QStringLiteral("ALTER TABLE uploads RENAME TO uploads_1"))
           + uploadTable(true)
           + QStringList({
               QStringLiteral(
                   "INSERT INTO uploads (id, hash, received, state, reason, content, is_empty,"
                   " source, group_key, changed) SELECT id, hash, received, state, reason, content,"
                   " is_empty, '', '', 0 FROM uploads_1"),
               QStringLiteral("UPDATE sqlite_sequence SET seq = (SELECT max(seq) FROM"
                              " sqlite_sequence WHERE name IN ('uploads', 'uploads_1'))"
                              " WHERE name = 'uploads'"),
               QStringLiteral("DROP TABLE uploads_1"),
           });
}

/// Gives the uploads with numbers above @p last, a thousand at most, their groups, and holds those
/// that would be held if they came now. The last number, or @p last if there are none left.
outcome<qint64> groupNextUploads(database &db, qint64 last)
{
    QVector<QVariantList> columns(5);
    const outcome<void> isRead = db.read(
        QStringLiteral("SELECT id, content, state, reason FROM uploads WHERE id > ? ORDER BY id"
                       " LIMIT 1000"),
        {last}, [&](const QSqlQuery &row) {
            last = row.value(0).toLongLong();
            storedUpload upload;
            upload.content = row.value(1).toString().toUtf8();
            const storedUpload now = makeUpload(uploadedMachine(upload), 0);
            const QString state = row.value(2).toString();
            const bool isHeld =
                now.state == QLatin1String("held") && state != QLatin1String("withdrawn");
            const QVariant values[] = {now.group, last, isHeld ? now.state : state,
                                       isHeld ? now.reason : row.value(3).toString(), last};
            for (int i = 0; i < columns.size(); ++i)
                columns[i].append(values[i]);
        });
    return isRead
        .and_then([&] {
            return columns[0].isEmpty()
                       ? outcome<void>()
                       : db.executeForEach(
                           QStringLiteral("UPDATE uploads SET group_key = ?, changed = ?,"
                                          " state = ?, reason = ? WHERE id = ?"),
                           columns);
        })
        .map([last] { return last; });
}

outcome<void> groupAllUploads(database &db)
{
    qint64 last = 0;
    while (true) {
        const outcome<qint64> reached = groupNextUploads(db, last);
        if (!reached)
            return failure(reached.error());
        if (*reached == last)
            return {};
        last = *reached;
    }
}

const QString setVersion =
    QStringLiteral("UPDATE schema_version SET version = %1").arg(schemaVersion);

outcome<void> migrateFrom1(database &db)
{
    const bool isSqlite = db.isSqlite();
    return changeAll(db, widerUploads(isSqlite))
        .and_then([&] { return groupAllUploads(db); })
        .and_then([&] {
            return changeAll(db, uploadIndexes() + publishingTables(isSqlite)
                                     + otherTables(isSqlite) + QStringList(setVersion));
        });
}

outcome<void> migrateFrom2(database &db)
{
    return changeAll(db, {stateIndex, setVersion});
}

/// Makes the tables, or brings those of an older @p version up to date.
outcome<void> migrate(database &db, qint64 version)
{
    switch (version) {
    case 0:
        return createTables(db);
    case 1:
        return migrateFrom1(db);
    default:
        return migrateFrom2(db);
    }
}

/// The version of the tables in @p db, 0 if it has none.
outcome<qint64> versionIn(database &db)
{
    return db
        .number(db.isSqlite() ? QStringLiteral("SELECT count(*) FROM sqlite_master"
                                               " WHERE type = 'table' AND name = 'schema_version'")
                              // Not to_regclass: it may remember that there was no such table.
                              : QStringLiteral("SELECT count(*) FROM pg_catalog.pg_tables WHERE"
                                               " schemaname = ANY (current_schemas(false))"
                                               " AND tablename = 'schema_version'"))
        .and_then([&db](qint64 tables) {
            return tables == 0
                       ? outcome<qint64>(0)
                       : db.number(QStringLiteral("SELECT max(version) FROM schema_version"));
        });
}

failure isNewer(qint64 version)
{
    return failure(QStringLiteral("a newer fennick-server has made this database: it has schema %1,"
                                  " and this program knows those up to %2")
                       .arg(QString::number(version), QString::number(schemaVersion)));
}

} // namespace

outcome<void> prepareSchema(database &db)
{
    const outcome<qint64> found = versionIn(db);
    if (!found || *found == schemaVersion)
        return found.map([](qint64) {});
    if (*found > schemaVersion)
        return isNewer(*found);
    return db.write([&db]() -> outcome<void> {
        // Another process may have been faster. What follows takes its time.
        const outcome<qint64> version =
            (db.isSqlite() ? outcome<void>()
                           : db.change(QStringLiteral("SET LOCAL statement_timeout = 0")))
                .and_then([&db] { return versionIn(db); });
        if (!version)
            return failure(version.error());
        if (*version == schemaVersion)
            return {};
        return migrate(db, *version);
    });
}

outcome<void> checkSchema(database &db)
{
    return versionIn(db).and_then([](qint64 version) -> outcome<void> {
        if (version > schemaVersion)
            return isNewer(version);
        if (version == 0)
            return failure(QStringLiteral("there are no results in this database"));
        if (version < schemaVersion) {
            return failure(QStringLiteral("the database has schema %1; publish and serve bring it"
                                          " up to %2")
                               .arg(QString::number(version), QString::number(schemaVersion)));
        }
        return {};
    });
}
