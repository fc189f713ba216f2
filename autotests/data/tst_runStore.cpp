// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runStore.h"

#include "data/runJson.h"
#include "data/wholeFile.h"
#include "runFixtures.h"
#include "support/dataDirectory.h"
#include "support/systemFaults.h"

#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <sys/stat.h>
#include <thread>

class tst_runStore : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { root.reset(); }

    void whatIsKeptIsThereAgain();
    void namesHaveTheTime();
    void namesFollowTheOrderOfKeeping_data();
    void namesFollowTheOrderOfKeeping();
    void oldestMakeRoom();
    void damagedFilesAreNamed();
    void readOne_data();
    void readOne();
    void twoAtOnce();
    void nothingThere();
    void noDirectory_data();
    void noDirectory();
    void readOnlyDirectory();
    void fullDiskLosesNothing();
    void lockedByAnother();
    void usersFolder();
    void wholeFiles();

private:
    QString file(const QString &name) const { return store->path() + QLatin1Char('/') + name; }
    void put(const QString &name, const QByteArray &content = toJson({})) const
    {
        QDir().mkpath(store->path());
        QVERIFY(writeWholeFile(file(name), content));
    }
    QStringList allFiles() const
    {
        return QDir(store->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> root;
    std::unique_ptr<runStore> store;
};

void tst_runStore::init()
{
    root = std::make_unique<QTemporaryDir>();
    store = std::make_unique<runStore>(root->filePath(QStringLiteral("some/runs")));
}

void tst_runStore::whatIsKeptIsThereAgain()
{
    const outcome<QString> first = store->append(fullRun());
    const outcome<QString> second = store->append(repeatedRun(2));
    QVERIFY(first && second);
    QCOMPARE(store->names(), QStringList({*first, *second}));
    const runStore::listing found = store->list();
    QCOMPARE(found.problems, QStringList());
    QCOMPARE(found.runs.size(), std::size_t(2));
    QCOMPARE(found.runs[0].name, *first);
    QCOMPARE(differences(found.runs[0].run, fullRun()), QStringList());
    QCOMPARE(differences(found.runs[1].run, repeatedRun(2)), QStringList());
    QCOMPARE(allFiles(), store->names()); // no lock, and nothing half written
}

void tst_runStore::namesHaveTheTime()
{
    const QDateTime before = QDateTime::currentDateTimeUtc();
    const QString name = store->append({}).value_or(QString());
    const QDateTime after = QDateTime::currentDateTimeUtc();
    QVERIFY2(name.startsWith(QLatin1String("run-")) && name.endsWith(QLatin1String("Z-000.json")),
             qPrintable(name));
    QDateTime time = QDateTime::fromString(name.mid(4, 18), QStringLiteral("yyyyMMdd'T'HHmmsszzz"));
    time.setTimeSpec(Qt::UTC);
    QVERIFY2(before <= time && time <= after, qPrintable(name));
}

void tst_runStore::namesFollowTheOrderOfKeeping_data()
{
    QTest::addColumn<QString>("latest");
    QTest::addColumn<QString>("next");
    const auto row = [](const char *name, const char *latest, const char *next) {
        QTest::newRow(name) << QString::fromLatin1(latest) << QString::fromLatin1(next);
    };
    row("clock set back", "run-29990131T225958007Z-000.json", "run-29990131T225958007Z-001.json");
    row("ten of a time", "run-29990131T225958007Z-009.json", "run-29990131T225958007Z-010.json");
    row("all numbers taken", "run-29991231T235959999Z-999.json",
        "run-30000101T000000000Z-000.json");
}

void tst_runStore::namesFollowTheOrderOfKeeping()
{
    QFETCH(QString, latest);
    QFETCH(QString, next);
    put(latest);
    const outcome<QString> name = store->append({});
    QVERIFY(name);
    QCOMPARE(*name, next);
    QCOMPARE(store->names(), QStringList({latest, next}));
}

void tst_runStore::oldestMakeRoom()
{
    const QStringList foreign = {QStringLiteral("run-1.json"), QStringLiteral("aaa.json"),
                                 QStringLiteral("run-20000101T000000000Z-000.json.bak")};
    for (const QString &name : foreign)
        put(name, "not ours");
    const QString folder = QStringLiteral("run-19990101T000000000Z-000.json");
    QDir().mkpath(file(folder));
    for (int i = 0; i < runStore::mostRuns + 2; ++i)
        put(QStringLiteral("run-20000101T%1Z-000.json").arg(i, 9, 10, QLatin1Char('0')));
    const QStringList before = store->names();
    QCOMPARE(before.size(), runStore::mostRuns + 2);

    const outcome<QString> name = store->append({});
    QVERIFY(name);
    QCOMPARE(store->names(), before.mid(3) + QStringList(*name));
    for (const QString &other : foreign)
        QVERIFY(QFile::exists(file(other)));
    QVERIFY(QFile::exists(file(folder)));
    QCOMPARE(store->list().runs.size(), std::size_t(runStore::mostRuns));
}

void tst_runStore::damagedFilesAreNamed()
{
    put(QStringLiteral("run-20000101T000000000Z-000.json"));
    put(QStringLiteral("run-20000102T000000000Z-000.json"), toJson(fullRun()).left(1000));
    put(QStringLiteral("run-20000103T000000000Z-000.json"),
        "{\"kind\":\"fennick-run\",\"schema\":9}");
    put(QStringLiteral("run-20000104T000000000Z-000.json"));
    const runStore::listing found = store->list();
    QCOMPARE(found.runs.size(), std::size_t(2));
    QCOMPARE(found.runs[1].name, QStringLiteral("run-20000104T000000000Z-000.json"));
    QCOMPARE(found.problems.size(), 2);
    QVERIFY(found.problems[0].contains(
        QStringLiteral("run-20000102T000000000Z-000.json': this is no JSON")));
    QVERIFY(found.problems[1].contains(
        QStringLiteral("run-20000103T000000000Z-000.json': a newer Fennick")));
}

void tst_runStore::readOne_data()
{
    QTest::addColumn<QString>("which");
    QTest::addColumn<QString>("found"); // the machine's name, or the problem
    const auto row = [](const char *name, const char *which, const char *found) {
        QTest::newRow(name) << QString::fromLatin1(which) << QString::fromLatin1(found);
    };
    row("oldest", "1", "a");
    row("newest", "2", "b");
    row("by its name", "run-20000102T000000000Z-000.json", "b");
    row("without the ending", "run-20000101T000000000Z-000", "a");
    row("number 0", "0", "there is no run 0: 2 are kept, counted from the oldest");
    row("number 3", "3", "there is no run 3: 2 are kept, counted from the oldest");
    row("negative", "-1", "there is no run -1: 2 are kept, counted from the oldest");
    row("nothing", "", "no kept run is called ''");
    row("a way out", "../runs/run-20000101T000000000Z-000",
        "no kept run is called '../runs/run-20000101T000000000Z-000'");
}

void tst_runStore::readOne()
{
    QFETCH(QString, which);
    QFETCH(QString, found);
    runRecord run;
    run.machine.name = QStringLiteral("a");
    put(QStringLiteral("run-20000101T000000000Z-000.json"), toJson(run));
    run.machine.name = QStringLiteral("b");
    put(QStringLiteral("run-20000102T000000000Z-000.json"), toJson(run));
    const outcome<runStore::keptRun> kept = store->read(which);
    QCOMPARE(kept ? kept->run.machine.name : kept.error(), found);
}

void tst_runStore::twoAtOnce()
{
    constexpr int each = 6;
    const auto keep = [this](int first) {
        for (int i = first; i < first + each; ++i) {
            runRecord run;
            run.machine.threads = i;
            runStore own(store->path());
            own.append(run);
        }
    };
    std::thread other(keep, 1 + each);
    keep(1);
    other.join();
    const runStore::listing found = store->list();
    QCOMPARE(found.problems, QStringList());
    QSet<int> threads;
    for (const runStore::keptRun &kept : found.runs)
        threads.insert(kept.run.machine.threads);
    QCOMPARE(threads.size(), 2 * each);
}

void tst_runStore::nothingThere()
{
    QCOMPARE(store->names(), QStringList());
    QVERIFY(store->list().runs.empty());
    QCOMPARE(store->list().problems, QStringList());
    QCOMPARE(store->read(QStringLiteral("1")).error(), QStringLiteral("no run is kept"));
    QVERIFY(!QFile::exists(store->path())); // looking makes nothing
}

void tst_runStore::noDirectory_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("sentence");
    QTest::newRow("no place") << QString()
                              << QStringLiteral("there is no directory for this user's data");
    QTest::newRow("cannot be made")
        << QStringLiteral("/proc/none/runs")
        << QStringLiteral("the directory '/proc/none/runs' cannot be made");
    QTest::newRow("a file") << QStringLiteral("/etc/passwd")
                            << QStringLiteral("the directory '/etc/passwd' cannot be made");
}

void tst_runStore::noDirectory()
{
    QFETCH(QString, path);
    QFETCH(QString, sentence);
    runStore none(path);
    const outcome<QString> name = none.append({});
    QVERIFY(!name);
    QCOMPARE(name.error(), sentence);
    QCOMPARE(none.names(), QStringList());
    QCOMPARE(none.list().problems, QFile::exists(path) && !path.isEmpty() ? QStringList(
                                       QStringLiteral("'%1' cannot be read").arg(path))
                                                                          : QStringList());
}

void tst_runStore::readOnlyDirectory()
{
    const outcome<QString> first = store->append(fullRun());
    QVERIFY(first);
    for (const QString &path : {root->path(), root->filePath(QStringLiteral("some"))})
        QCOMPARE(chmod(QFile::encodeName(path).constData(), 0755), 0);
    const QByteArray place = QFile::encodeName(store->path());
    QCOMPARE(chmod(place.constData(), 0555), 0);
    {
        const ordinaryUser user;
        const outcome<QString> name = store->append({});
        QVERIFY(!name);
        QCOMPARE(name.error(), QStringLiteral("'%1' cannot be written to").arg(store->path()));
        QCOMPARE(store->list().runs.size(), std::size_t(1));
    }
    QCOMPARE(chmod(place.constData(), 0000), 0);
    {
        const ordinaryUser user;
        QCOMPARE(store->list().problems,
                 QStringList(QStringLiteral("'%1' cannot be read").arg(store->path())));
    }
    QCOMPARE(chmod(place.constData(), 0755), 0);
    QCOMPARE(store->names(), QStringList(*first));
}

void tst_runStore::fullDiskLosesNothing()
{
    put(QStringLiteral("run-19990101T000000000Z-000.json"), toJson(fullRun()));
    for (int i = 1; i < runStore::mostRuns; ++i)
        put(QStringLiteral("run-20000101T%1Z-000.json").arg(i, 9, 10, QLatin1Char('0')));
    const QStringList before = store->names();
    for (const rlim_t bytes : {rlim_t(64), rlim_t(4096)}) { // the lock does not fit, or the run
        const fullDisk disk(bytes);
        const outcome<QString> name = store->append(repeatedRun(3));
        QVERIFY(!name);
        QVERIFY2(name.error().contains(QStringLiteral("cannot be written")),
                 qPrintable(name.error()));
    }
    QCOMPARE(store->names(), before);
    QCOMPARE(allFiles(), before);
    QVERIFY(store->append(fullRun()));
}

void tst_runStore::lockedByAnother()
{
    // A lock that a program has left behind that ended without a word.
    put(QStringLiteral("lock"),
        "999999999\nfennick-cli\n" + QSysInfo::machineHostName().toUtf8() + "\n");
    QVERIFY(store->append({}));
    QCOMPARE(store->names().size(), 1);
}

void tst_runStore::usersFolder()
{
    const dataDirectory data;
    QCOMPARE(runStore::ofUser().path(), data.path(QStringLiteral("runs")));
}

void tst_runStore::wholeFiles()
{
    const QString path = root->filePath(QStringLiteral("file"));
    QVERIFY(!readWholeFile(path, 10));
    QVERIFY(writeWholeFile(path, "0123456789"));
    QCOMPARE(readWholeFile(path, 10).value_or(QByteArray()), QByteArray("0123456789"));
    QCOMPARE(readWholeFile(path, 9).error(),
             QStringLiteral("'%1' is longer than 9 bytes").arg(path));
    const outcome<QByteArray> folder = readWholeFile(root->path(), 10);
    QVERIFY(!folder);
    QVERIFY(folder.error().startsWith(QStringLiteral("'%1' cannot be read: ").arg(root->path())));
    const outcome<void> written = writeWholeFile(path + QStringLiteral("/below"), "x");
    QVERIFY(!written);
    QVERIFY(written.error().startsWith(QStringLiteral("'%1/below' cannot be written: ").arg(path)));
    const outcome<runRecord> run = readRunFile(path);
    QVERIFY(!run);
    QVERIFY(run.error().startsWith(QStringLiteral("'%1': this is no ").arg(path)));
}

QTEST_GUILESS_MAIN(tst_runStore)
#include "tst_runStore.moc"
