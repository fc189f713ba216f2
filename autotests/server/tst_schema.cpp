// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/schema.h"

#include "server/rules/groupRules.h"

#include "storeFixture.h"

#include <QtTest>

namespace
{

/// What the upload, as it is stored, says of itself.
QString rowOf(const storedUpload &upload)
{
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(QString::number(upload.id), upload.state,
             QString::number(uploadedMachine(upload).getTests().size()),
             upload.isEmpty ? QStringLiteral("empty") : QStringLiteral("full"), upload.reason);
}

QStringList rowsIn(resultStore &store)
{
    QStringList rows;
    for (const storedUpload &upload : uploadsIn(store))
        rows.append(rowOf(upload));
    return rows;
}

QStringList listsIn(resultStore &store)
{
    QStringList lists;
    const auto done = store.forEachList([&lists](const storedList &list) {
        lists.append(QStringLiteral("%1 %2 %3 %4")
                         .arg(QString::number(list.version), QString::number(int(list.isBeta)),
                              QString::number(list.made),
                              QString::number(qUncompress(list.content).size())));
    });
    return done ? lists : QStringList(done.error());
}

/// The number that @p sql selects in the database at @p place, however old its tables are.
qint64 numberIn(const databaseAddress &place, const QString &sql)
{
    database db(place, databaseUse::operating);
    return db.open().and_then([&] { return db.number(sql); }).value_or(-1);
}

outcome<void> changeIn(const databaseAddress &place, const QString &sql)
{
    database db(place, databaseUse::operating);
    return db.open().and_then([&] { return db.change(sql); });
}

} // namespace

/// Each test runs on both products.
class tst_schema : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        QVERIFY2(fixture.beginWithSchema1(QStringLiteral(FENNICK_SCHEMA_1)),
                 qPrintable(fixture.error()));
    }

    void keepsEverything_data() { storeFixture::addProducts(); }
    void keepsEverything();
    void groupsAndChanges_data() { storeFixture::addProducts(); }
    void groupsAndChanges();
    void sameTablesAsNewOnes_data() { storeFixture::addProducts(); }
    void sameTablesAsNewOnes();
    void isUndoneAndTriedAgain_data() { storeFixture::addProducts(); }
    void isUndoneAndTriedAgain();
    void fromTheSecond_data() { storeFixture::addProducts(); }
    void fromTheSecond();
    void severalAtOnce_data() { storeFixture::addProducts(); }
    void severalAtOnce();
    void readersDoNotMigrate_data() { storeFixture::addProducts(); }
    void readersDoNotMigrate();
    void newerSchema_data() { storeFixture::addProducts(); }
    void newerSchema();

private:
    storeFixture fixture;
};

void tst_schema::keepsEverything()
{
    resultStore store(fixture.address());
    QCOMPARE(why(store.open()), QString());
    const QStringList expected = {
        QStringLiteral("1 published 18 full "),
        QStringLiteral("2 published 18 full "),
        QStringLiteral("3 published 18 full "),
        QStringLiteral("4 published 18 full "),
        QStringLiteral("5 withdrawn 18 full too fast: <3 \"GHz\""),
        QStringLiteral("6 received 18 empty "),
        // An unknown processor; today it would not be taken.
        QStringLiteral(
            "7 held 18 full \"unknown\" and \"(est.)\" are no part of a processor's name"),
        QStringLiteral("8 received 18 full "),
        QStringLiteral("9 withdrawn 18 full a phone"),
    };
    QCOMPARE(rowsIn(store), expected);
    const QVector<storedUpload> all = uploadsIn(store);
    QCOMPARE(uploadedMachine(all.at(3)).getName(), QString::fromUtf8("\xC3\x84\xC3\x96 \"<&>'"));
    QVERIFY(all.at(0).received > 1'700'000'000'000);
    const QStringList lists = listsIn(store);
    QCOMPARE(lists.size(), 2);
    QVERIFY2(lists.at(0).startsWith(QStringLiteral("1011 0 ")), qPrintable(lists.at(0)));
    QVERIFY2(lists.at(1).startsWith(QStringLiteral("1011 1 ")), qPrintable(lists.at(1)));
    // The same upload is still the same, and a new one gets a number that nobody has had.
    QVERIFY(store.add({all.at(1), numbered(1)}));
    QCOMPARE(uploadsIn(store).size(), 10);
    QVERIFY(uploadsIn(store).last().id > 9);
}

void tst_schema::groupsAndChanges()
{
    resultStore store(fixture.address());
    QCOMPARE(why(store.open()), QString());
    qint64 change = 0;
    for (const storedUpload &upload : uploadsIn(store)) {
        QCOMPARE(upload.group, groupKey(uploadedMachine(upload)));
        QCOMPARE(upload.source, QByteArray());
        const auto changed = store.connection().number(
            QStringLiteral("SELECT changed FROM uploads WHERE id = ?"), {upload.id});
        QVERIFY(changed.value_or(0) > change);
        change = *changed;
    }
    QCOMPARE(uploadsIn(store).at(6).group, QString()); // an unknown processor
    QVERIFY(!uploadsIn(store).at(0).group.isEmpty());
    QCOMPARE(store.nextChange().value_or(0), change + 1);
}

void tst_schema::sameTablesAsNewOnes()
{
    const QString sql =
        fixture.isSqlite()
            ? QStringLiteral("SELECT type || ' ' || name || ' ' || coalesce(sql, '') FROM"
                             " sqlite_master ORDER BY 1")
            : QStringLiteral(
                "SELECT concat_ws(' ', table_name, column_name, data_type, is_nullable,"
                " column_default, collation_name) FROM information_schema.columns WHERE"
                " table_schema = 'public' UNION ALL SELECT indexdef FROM pg_indexes WHERE"
                " schemaname = 'public' UNION ALL SELECT pg_get_constraintdef(oid) FROM"
                " pg_constraint WHERE connamespace = 'public'::regnamespace ORDER BY 1");
    const auto tablesOf = [&sql](const databaseAddress &place) {
        resultStore store(place);
        QStringList tables;
        const auto done = store.open().and_then([&] {
            return store.connection().read(sql, {}, [&tables](const QSqlQuery &row) {
                tables.append(row.value(0).toString().remove(QLatin1Char('"')).simplified());
            });
        });
        return done ? tables : QStringList(done.error());
    };
    const QStringList migrated = tablesOf(fixture.address());
    fixture.begin();
    const QStringList fresh = tablesOf(fixture.address());
    QVERIFY(fresh.size() > 10);
    QCOMPARE(migrated, fresh);
}

void tst_schema::isUndoneAndTriedAgain()
{
    const databaseAddress place = fixture.address();
    // In the way of one of the last steps.
    QVERIFY(changeIn(place, QStringLiteral("CREATE TABLE write_probe (x INTEGER)")));
    {
        resultStore store(place);
        QVERIFY(!store.open());
    }
    QCOMPARE(numberIn(place, QStringLiteral("SELECT version FROM schema_version")), qint64(1));
    QCOMPARE(numberIn(place, QStringLiteral("SELECT count(*) FROM uploads")), qint64(9));
    QCOMPARE(numberIn(place, QStringLiteral("SELECT count(changed) FROM uploads")), qint64(-1));
    QVERIFY(changeIn(place, QStringLiteral("DROP TABLE write_probe")));
    resultStore store(place);
    QCOMPARE(why(store.open()), QString());
    QCOMPARE(uploadsIn(store).size(), 9);
}

/// The second schema was the third without an index.
void tst_schema::fromTheSecond()
{
    fixture.begin();
    const databaseAddress place = fixture.address();
    {
        resultStore store(place);
        QCOMPARE(why(store.open()), QString());
        QVERIFY(store.add({numbered(1)}));
    }
    const QString indexes = fixture.isSqlite()
                                ? QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name ="
                                                 " 'uploads_state'")
                                : QStringLiteral("SELECT count(*) FROM pg_indexes WHERE indexname ="
                                                 " 'uploads_state'");
    QVERIFY(changeIn(place, QStringLiteral("DROP INDEX uploads_state")));
    QVERIFY(changeIn(place, QStringLiteral("UPDATE schema_version SET version = 2")));
    QCOMPARE(numberIn(place, indexes), qint64(0));
    resultStore store(place);
    QCOMPARE(why(store.open()), QString());
    QCOMPARE(uploadsIn(store).size(), 1);
    QCOMPARE(numberIn(place, indexes), qint64(1));
    QCOMPARE(numberIn(place, QStringLiteral("SELECT version FROM schema_version")), qint64(3));
}

void tst_schema::severalAtOnce()
{
    const databaseAddress place = fixture.address();
    std::atomic<int> opened = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            resultStore store(place);
            opened += store.open() && uploadsIn(store).size() == 9 ? 1 : 0;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(opened, 4);
}

void tst_schema::readersDoNotMigrate()
{
    {
        resultStore store(fixture.address(), databaseUse::reading);
        QCOMPARE(why(store.open()),
                 QStringLiteral("the database has schema 1; publish and serve bring it up to 3"));
    }
    QCOMPARE(numberIn(fixture.address(), QStringLiteral("SELECT version FROM schema_version")),
             qint64(1));
}

void tst_schema::newerSchema()
{
    const databaseAddress place = fixture.address();
    QVERIFY(changeIn(place, QStringLiteral("UPDATE schema_version SET version = 7")));
    for (const databaseUse use :
         {databaseUse::serving, databaseUse::operating, databaseUse::reading}) {
        resultStore store(place, use);
        QCOMPARE(why(store.open()),
                 QStringLiteral("a newer fennick-server has made this database: it has schema 7,"
                                " and this program knows those up to 3"));
    }
}

QTEST_GUILESS_MAIN(tst_schema)
#include "tst_schema.moc"
