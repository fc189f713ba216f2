// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/database.h"

#include "server/resultStore.h"

#include "storeFixture.h"

#include <QElapsedTimer>
#include <QtTest>

#include <sys/stat.h>

namespace
{

/// The rights on a file, as in "600"; nothing if there is none.
QString rightsOf(const QString &path)
{
    struct stat found {
    };
    return stat(QFile::encodeName(path).constData(), &found) == 0
               ? QString::number(found.st_mode & 0777, 8)
               : QString();
}

databaseAddress file(const QString &path)
{
    return *parseDatabaseAddress(QStringLiteral("sqlite:") + path);
}

/// Writes over a part of a file.
bool damage(const QString &path)
{
    QFile damaged(path);
    const qint64 size = QFileInfo(path).size();
    return damaged.open(QIODevice::ReadWrite) && damaged.seek(size / 3)
           && damaged.write(QByteArray(static_cast<int>(size / 3), '\xFF')) > 0;
}

} // namespace

/// Connections, their files and what goes wrong with them.
class tst_database : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY2(fixture.begin(), qPrintable(fixture.error())); }

    void filesAreForTheOwner();
    void foldersStayAsTheyAre();
    void readingMakesNothing_data();
    void readingMakesNothing();
    void readingChangesNothing_data() { storeFixture::addProducts(); }
    void readingChangesNothing();
    void errorsInTheMiddle();
    void connectionLostInTheMiddle();
    void writersWaitForEachOther_data() { storeFixture::addProducts(); }
    void writersWaitForEachOther();
    void locksAreNotWaitedForEver_data() { storeFixture::addProducts(); }
    void locksAreNotWaitedForEver();
    void statementsEnd();
    void errorsQuoteNothing_data() { storeFixture::addProducts(); }
    void errorsQuoteNothing();
    void limits_data();
    void limits();
    void openingNeedsNoLock_data() { storeFixture::addProducts(); }
    void openingNeedsNoLock();
    void snapshots_data() { storeFixture::addProducts(); }
    void snapshots();
    void writable_data() { storeFixture::addProducts(); }
    void writable();
    void fullDisk();
    void readOnly();

private:
    storeFixture fixture;
    QTemporaryDir directory;
};

void tst_database::filesAreForTheOwner()
{
    const mode_t before = umask(0);
    const QString path = directory.filePath(QStringLiteral("a/b c/x.db"));
    {
        resultStore store(file(path));
        QCOMPARE(why(store.open()), QString());
        QVERIFY(store.add({numbered(1)}));
        for (const char *end : {"", "-wal", "-shm"})
            QCOMPARE(rightsOf(path + QLatin1String(end)), QStringLiteral("600"));
    }
    umask(before);
    QCOMPARE(rightsOf(path), QStringLiteral("600"));
    for (const char *folder : {"a", "a/b c"})
        QCOMPARE(rightsOf(directory.filePath(QLatin1String(folder))), QStringLiteral("700"));
}

void tst_database::foldersStayAsTheyAre()
{
    const QString folder = directory.filePath(QStringLiteral("mine"));
    const QString path = folder + QStringLiteral("/x.db");
    QVERIFY(QDir().mkpath(folder));
    QCOMPARE(chmod(QFile::encodeName(folder).constData(), 0775), 0);
    QVERIFY(resultStore(file(path)).open());
    QCOMPARE(rightsOf(folder), QStringLiteral("775"));
    QCOMPARE(chmod(QFile::encodeName(path).constData(), 0640), 0);
    QVERIFY(resultStore(file(path)).open());
    QCOMPARE(rightsOf(path), QStringLiteral("640"));
}

void tst_database::readingMakesNothing_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("file") << QStringLiteral("none.db");
    QTest::newRow("folder") << QStringLiteral("none/none.db");
    QTest::newRow("signs of an address") << QStringLiteral("a?mode=rwc&b=%41#c");
}

void tst_database::readingMakesNothing()
{
    QFETCH(QString, name);
    const QString path = directory.filePath(name);
    const QStringList before = QDir(directory.path()).entryList();
    resultStore store(file(path), databaseUse::reading);
    QCOMPARE(why(store.open()), QStringLiteral("there is no file '%1'").arg(path));
    QCOMPARE(QDir(directory.path()).entryList(), before);
    if (name.contains(QLatin1Char('/')))
        return;
    QVERIFY(resultStore(file(path)).open());
    QCOMPARE(why(resultStore(file(path), databaseUse::reading).open()), QString());
}

void tst_database::readingChangesNothing()
{
    {
        resultStore reader(fixture.address(), databaseUse::reading);
        const QString error = why(reader.open());
        QVERIFY2(error == QStringLiteral("there are no results in this database")
                     || error.startsWith(QStringLiteral("there is no file")),
                 qPrintable(error));
        resultStore writer(fixture.address());
        QVERIFY(writer.open() && writer.add({numbered(1)}));
    }
    resultStore reader(fixture.address(), databaseUse::reading);
    QCOMPARE(why(reader.open()), QString());
    QVERIFY(!reader.add({numbered(2)}));
    QVERIFY(!reader.checkWritable());
    QVERIFY(!reader.connection().change(QStringLiteral("CREATE TABLE x (y INTEGER)")));
    QCOMPARE(uploadsIn(reader).size(), 1);
}

void tst_database::errorsInTheMiddle()
{
    {
        resultStore store(fixture.address());
        QVERIFY(store.open());
        QVector<storedUpload> all;
        for (int i = 1; i <= 600; ++i)
            all.append(numbered(i));
        QVERIFY(store.add(all));
    }
    QVERIFY(damage(fixture.address().name));
    resultStore store(fixture.address(), databaseUse::reading);
    QCOMPARE(why(store.open()), QString());
    int uploads = 0;
    const auto done = store.forEachUpload([&uploads](const storedUpload &) { ++uploads; });
    QVERIFY(!done);
    QVERIFY2(done.error().contains(QStringLiteral("malformed")), qPrintable(done.error()));
    QVERIFY(uploads > 0 && uploads < 600);
}

void tst_database::connectionLostInTheMiddle()
{
    fixture.beginPostgres();
    resultStore store(fixture.address());
    resultStore other(fixture.address());
    QVERIFY(store.open() && other.open());
    QVERIFY(store.connection().change(
        QStringLiteral("INSERT INTO lists SELECT n, 0, 0, decode(repeat('00', 5000), 'hex')"
                       " FROM generate_series(1, 3000) AS n")));
    int lists = 0;
    const auto done = store.forEachList([&](const storedList &) {
        if (++lists == 1) {
            const auto ended = other.connection().change(QStringLiteral(
                "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE datname ="
                " current_database() AND pid <> pg_backend_pid()"));
            if (!ended)
                lists = -10'000;
        }
    });
    QVERIFY(!done);
    QVERIFY(lists > 0 && lists < 3'000);
}

void tst_database::writersWaitForEachOther()
{
    databaseAddress impatient = fixture.address();
    impatient.lockTimeout = 1;
    resultStore first(fixture.address());
    resultStore second(impatient);
    QVERIFY(first.open() && second.open());
    bool isShutOut = false;
    const auto done = first.connection().write([&]() -> outcome<void> {
        isShutOut = !second.connection().write([]() -> outcome<void> { return {}; });
        return {};
    });
    QCOMPARE(why(done), QString());
    QVERIFY(isShutOut);
    QVERIFY(second.connection().write([]() -> outcome<void> { return {}; }));
}

void tst_database::locksAreNotWaitedForEver()
{
    databaseAddress place = fixture.address();
    place.lockTimeout = 50;
    resultStore holder(fixture.address());
    resultStore store(place);
    QVERIFY(holder.open() && store.open());
    const auto held = holder.connection().write([&]() -> outcome<void> {
        const auto add = store.add({numbered(1)});
        const auto check = store.checkWritable();
        const bool areRefused = !add && !check;
        return areRefused ? outcome<void>() : failure(QStringLiteral("stored"));
    });
    QCOMPARE(why(held), QString());
    QCOMPARE(why(store.add({numbered(1)})), QString());
}

void tst_database::statementsEnd()
{
    fixture.beginPostgres();
    databaseAddress place = fixture.address();
    place.statementTimeout = 50;
    database db(place, databaseUse::serving);
    QVERIFY(db.open());
    const auto done = db.change(QStringLiteral("SELECT pg_sleep(60)"));
    QVERIFY(!done);
    QVERIFY2(done.error().contains(QStringLiteral("timeout")), qPrintable(done.error()));
    QVERIFY(db.change(QStringLiteral("SELECT 1")));
}

void tst_database::errorsQuoteNothing()
{
    resultStore store(fixture.address());
    QVERIFY(store.open());
    storedUpload wrong = stored(machineWith(QStringLiteral("SECRET"), QStringLiteral("c"), 1));
    wrong.state = QStringLiteral("lost");
    const QString error = why(store.add({wrong}));
    QVERIFY(!error.isEmpty());
    QVERIFY2(!error.contains(QStringLiteral("SECRET")) && !error.contains(QLatin1Char('\n')),
             qPrintable(error));
}

void tst_database::limits_data()
{
    QTest::addColumn<int>("use");
    QTest::addColumn<QString>("query");
    QTest::addColumn<QString>("expected"); // locks, statements, idle transactions
    const auto row = [](const char *name, databaseUse use, const char *query,
                        const char *expected) {
        QTest::newRow(name) << int(use) << QString::fromLatin1(query)
                            << QString::fromLatin1(expected);
    };
    row("serving", databaseUse::serving, "", "5s 5s 1min off");
    row("operating", databaseUse::operating, "", "30s 0 1min off");
    row("reading", databaseUse::reading, "", "30s 0 1min on");
    row("as the address says", databaseUse::serving, "&lock_timeout=70&statement_timeout=8000",
        "70ms 8s 1min off");
}

void tst_database::limits()
{
    QFETCH(int, use);
    QFETCH(QString, query);
    const QString address = fixture.postgres.newDatabase() + query;
    database db(*parseDatabaseAddress(address), static_cast<databaseUse>(use));
    QCOMPARE(why(db.open()), QString());
    QString found;
    QVERIFY(db.read(QStringLiteral("SELECT concat_ws(' ', current_setting('lock_timeout'),"
                                   " current_setting('statement_timeout'),"
                                   " current_setting('idle_in_transaction_session_timeout'),"
                                   " current_setting('default_transaction_read_only'))"),
                    {}, [&found](const QSqlQuery &row) { found = row.value(0).toString(); }));
    QTEST(found, "expected");
}

void tst_database::openingNeedsNoLock()
{
    databaseAddress place = fixture.address();
    place.lockTimeout = 1;
    resultStore holder(fixture.address());
    QVERIFY(holder.open());
    const auto held = holder.connection().write([&]() -> outcome<void> {
        resultStore other(place);
        return other.open().and_then([&] { return other.newestVersion().map([](int) {}); });
    });
    QCOMPARE(why(held), QString());
}

void tst_database::snapshots()
{
    databaseAddress impatient = fixture.address();
    impatient.lockTimeout = 1;
    resultStore reader(fixture.address());
    resultStore writer(impatient);
    QVERIFY(reader.open() && writer.open() && writer.add({numbered(1)}));
    const auto seen = reader.connection().snapshot([&]() -> outcome<int> {
        const int before = uploadsIn(reader).size();
        if (const auto added = writer.add({numbered(2)}); !added)
            return failure(added.error());
        return before * 10 + uploadsIn(reader).size();
    });
    QCOMPARE(why(seen), QString());
    QCOMPARE(*seen, 11);
    QCOMPARE(uploadsIn(reader).size(), 2);
}

void tst_database::writable()
{
    resultStore store(fixture.address());
    QVERIFY(store.open() && store.add({numbered(1)}));
    QCOMPARE(why(store.checkWritable()), QString());
    QCOMPARE(uploadsIn(store).size(), 1);
    QCOMPARE(store.connection().number(QStringLiteral("SELECT count(*) FROM write_probe")).value(),
             qint64(0));
    QVERIFY(store.add({numbered(2)}));
    QCOMPARE(uploadsIn(store).last().id, qint64(2)); // no number has been used up
    store.close();
    QVERIFY(!store.checkWritable());
}

void tst_database::fullDisk()
{
    resultStore store(fixture.address());
    QVERIFY(store.open() && store.add({numbered(1)}));
    // As when no page can be added to the file.
    const qint64 pages = store.connection().number(QStringLiteral("PRAGMA page_count")).value_or(0);
    QVERIFY(pages > 0);
    QVERIFY(store.connection().change(QStringLiteral("PRAGMA max_page_count = %1").arg(pages)));
    const auto checked = store.checkWritable();
    QVERIFY2(why(checked).contains(QStringLiteral("full")), qPrintable(why(checked)));
    QCOMPARE(uploadsIn(store).size(), 1);
    QVERIFY(store.connection().change(QStringLiteral("PRAGMA max_page_count = 1000000")));
    QCOMPARE(why(store.checkWritable()), QString());
}

void tst_database::readOnly()
{
    fixture.beginPostgres();
    QVERIFY(resultStore(fixture.address()).open());
    resultStore store(fixture.address());
    QVERIFY(store.open());
    QVERIFY(store.connection().change(QStringLiteral("SET default_transaction_read_only = on")));
    const auto checked = store.checkWritable();
    QVERIFY2(why(checked).contains(QStringLiteral("read-only")), qPrintable(why(checked)));
    QVERIFY(store.newestVersion().has_value());
}

QTEST_GUILESS_MAIN(tst_database)
#include "tst_database.moc"
