// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"
#include "engine/benchBase.h"

#include "engine/fakeClock.h"
#include "support/dataDirectory.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QtTest>

#include <cmath>
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

const QString userFile = QStringLiteral("user_data.xml");
const QString foundNone = QStringLiteral("Found no local user benchmark data\n");
const QString foundSome = QStringLiteral("Found local user benchmark data\n");
const QString stored = QStringLiteral("Store userdata\n");
const QString notWritable = QStringLiteral("Can't store userdata (not writable)\n");
const QString removed = QStringLiteral("Remove user benchmark data\n");

/// A runner with three fakes, the last of which a full run leaves out.
struct fixture {
    fixture()
    {
        suite tests;
        for (const char *name : {"mandel", "colors ", "hidden"})
            tests.push_back(std::make_unique<fakeTest>(QString::fromLatin1(name), nullptr));
        tests.back()->setSingleOnly(true);
        runner = std::make_unique<benchBase>(&log, nullptr, nullptr, std::move(tests));
        load();
    }

    void load()
    {
        runner->loadReferenceData(benchDataAccess::builtInReference);
        referenceCount = runner->getResults().size();
        log.text.clear();
        runner->loadUserData();
    }
    QString logOfLoad()
    {
        load();
        return log.text;
    }
    QString logOf(void (benchDataAccess::*operation)())
    {
        log.text.clear();
        (runner.get()->*operation)();
        return log.text;
    }
    QString logOf(bool (benchDataAccess::*operation)())
    {
        log.text.clear();
        wasDone = (runner.get()->*operation)();
        return log.text;
    }
    /// Lets a test of the suite have a result of its own.
    void record(int index)
    {
        auto *test = static_cast<fakeTest *>(runner->getTests().at(index));
        const fakeClock clock;
        test->onRun = [] { fakeClock::pass(std::chrono::milliseconds(2)); };
        runner->setTestTime(1);
        runner->runTest(test, QSize(3820, 2160), true);
    }
    const benchResults &own() const { return runner->getResults().last(); }
    float result(const char *test) const
    {
        return own().getTests().value(QString::fromLatin1(test), benchResults::test(-1)).value;
    }

    textLog log;
    std::unique_ptr<benchBase> runner;
    int referenceCount = 0;
    bool wasDone = false;
};

/// Acts as a user who is not the administrator, to whom permissions apply, while it lives.
class ordinaryUser
{
public:
    ordinaryUser() : wasRoot(geteuid() == 0)
    {
        if (wasRoot && seteuid(65534) != 0)
            qFatal("cannot become another user");
    }
    ordinaryUser(const ordinaryUser &) = delete;
    ordinaryUser &operator=(const ordinaryUser &) = delete;
    ~ordinaryUser()
    {
        if (wasRoot && seteuid(0) != 0)
            qFatal("cannot become root again");
    }

private:
    bool wasRoot;
};

/// Lets files grow to a few bytes only, as on a full disk, while it lives.
class fullDisk
{
public:
    fullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit small = before;
        small.rlim_cur = 64;
        setrlimit(RLIMIT_FSIZE, &small);
    }
    fullDisk(const fullDisk &) = delete;
    fullDisk &operator=(const fullDisk &) = delete;
    ~fullDisk() { setrlimit(RLIMIT_FSIZE, &before); }

private:
    rlimit before{};
};

} // namespace

class tst_userStore : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void firstStart();
    void fileIsExact();
    void survivesARestart();
    void nameThatIsNotPlain();
    void storedMachineIsKept();
    void unreadableFile_data();
    void unreadableFile();
    void directoryInPlaceOfTheFile();
    void severalMachines();
    void absurdValues_data();
    void absurdValues();
    void cutOffFileKeepsWhatItHas();
    void removedTwice();
    void noDirectory();
    void noHome();
    void readOnlyDirectory();
    void fullDiskKeepsTheFile();
    void nothingLoaded();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_userStore::firstStart()
{
    fixture f;
    QCOMPARE(f.log.text, foundNone);
    QCOMPARE(f.runner->getResults().size(), f.referenceCount + 1);
    QCOMPARE(f.own().getTests().keys(),
             QStringList(
                 {QStringLiteral("colors "), QStringLiteral("hidden"), QStringLiteral("mandel")}));
    for (const benchResults::test &test : f.own().getTests())
        QCOMPARE(test.value, 0.0F);
    QVERIFY(!QFile::exists(directory->path(userFile)));
}

void tst_userStore::fileIsExact()
{
    directory->write(userFile, "<F><bench machineName=\"LAB7\" os=\"linux\" cpu=\"Some &amp; "
                               "&quot;CPU&quot;\" clock=\"3500000000\" threadCount=\"8\">"
                               "<test name=\"mandel\" result=\"555.6094\"/>"
                               "<test name=\"hidden\" result=\"3\"/>"
                               "<test name=\"old test\" result=\"1234567\"/>"
                               "<test name=\"colors \" result=\"0\"/></bench></F>");
    fixture f;
    QCOMPARE(f.log.text, foundSome);
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), stored);
    QVERIFY(f.wasDone);
    // Without the test that a full run leaves out; one that the suite does not know stays.
    QCOMPARE(directory->read(userFile),
             QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                        "<Fennick>\n"
                        "    <bench machineName=\"LAB7\" os=\"linux\" cpu=\"Some &amp; "
                        "&quot;CPU&quot;\" clock=\"3500000000\" threadCount=\"8\">\n"
                        "        <test name=\"colors \" result=\"0\"/>\n"
                        "        <test name=\"mandel\" result=\"555.609\"/>\n"
                        "        <test name=\"old test\" result=\"1.23457e+06\"/>\n"
                        "    </bench>\n"
                        "</Fennick>\n"));
    // What is in memory keeps the hidden test.
    QCOMPARE(f.result("hidden"), 3.0F);
}

void tst_userStore::survivesARestart()
{
    fixture f;
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), stored);
    const QByteArray zeros = directory->read(userFile);
    QVERIFY(zeros.contains("<test name=\"colors \" result=\"0\"/>"));
    QVERIFY(zeros.contains("<test name=\"mandel\" result=\"0\"/>"));
    QVERIFY(!zeros.contains("hidden"));

    f.record(0);
    f.record(2);
    const float result = f.result("mandel");
    QVERIFY(result > 0);
    QVERIFY(f.result("hidden") > 0);
    f.runner->storeUserData();
    QVERIFY(!directory->read(userFile).contains("hidden"));

    fixture again;
    QCOMPARE(again.log.text, foundSome);
    QCOMPARE(again.runner->getResults().size(), again.referenceCount + 1);
    QVERIFY(std::abs(again.result("mandel") - result) <= result * 1e-5F);
    QCOMPARE(again.result("colors "), 0.0F);
    QCOMPARE(again.result("hidden"), -1.0F);
    QVERIFY(!again.own().isMeasured());
    QCOMPARE(again.own().getCpu(), f.own().getCpu());
    QCOMPARE(again.own().getThreads(), f.own().getThreads());
    QCOMPARE(again.own().getFrequency(), f.own().getFrequency());
}

void tst_userStore::nameThatIsNotPlain()
{
    const QString name = QString::fromUtf8("<Ü> \"50%1\"\n\t&amp; \xF0\x9F\x90\xA7 %n");
    qputenv("COMPUTERNAME", name.toLocal8Bit());
    {
        fixture f;
        f.runner->storeUserData();
    }
    QCOMPARE(fixture().own().getName(), name);
    // A character that no XML can hold must not cost the results.
    directory->write(userFile, {});
    qputenv("COMPUTERNAME", "bell\a\x1B end");
    {
        fixture f;
        f.runner->storeUserData();
    }
    qunsetenv("COMPUTERNAME");
    QCOMPARE(fixture().own().getName(), QStringLiteral("bell\uFFFD\uFFFD end"));
}

void tst_userStore::storedMachineIsKept()
{
    // The file says who the machine was when it was measured.
    directory->write(userFile, "<F><bench machineName=\"OLD\" os=\"android\" cpu=\"c\" clock=\"1\" "
                               "threadCount=\"3\"/></F>");
    fixture f;
    QCOMPARE(f.own().getName(), QStringLiteral("OLD"));
    QCOMPARE(f.own().getOs(), QStringLiteral("android"));
    // A result is only recorded for a test that has an entry.
    f.record(0);
    QVERIFY(f.own().isMeasured());
    QVERIFY(f.own().getTests().isEmpty());
}

void tst_userStore::unreadableFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << QByteArray("<?xml version=\"1.0\"?><Fennick><bench machineNa");
    QTest::newRow("no XML") << QByteArray("%PDF-1.4 \0\xFF\xFE", 12);
    QTest::newRow("no machine") << QByteArray("<Fennick><test name=\"mandel\" result=\"1\"/>"
                                              "</Fennick>");
}

void tst_userStore::unreadableFile()
{
    QFETCH(QByteArray, content);
    directory->write(userFile, content);
    fixture f;
    const QString cannot =
        QStringLiteral("'%1' cannot be read; it is kept until new results are stored\n")
            .arg(directory->path(userFile));
    QCOMPARE(f.log.text, foundSome + cannot + foundNone);
    QCOMPARE(f.runner->getResults().size(), f.referenceCount + 1);
    QCOMPARE(f.result("mandel"), 0.0F);
    QCOMPARE(directory->read(userFile), content);

    f.record(0);
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), stored);
    QCOMPARE(f.logOfLoad(), foundSome);
}

void tst_userStore::directoryInPlaceOfTheFile()
{
    QDir().mkpath(directory->path(userFile));
    fixture f;
    QVERIFY(f.log.text.contains(QStringLiteral("user_data.xml' cannot be read; it is kept")));
    QVERIFY(f.log.text.endsWith(foundNone));
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), notWritable);
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QVERIFY(QFileInfo(directory->path(userFile)).isDir());
}

void tst_userStore::severalMachines()
{
    directory->write(userFile, "<F><bench machineName=\"first\" os=\"linux\"/>"
                               "<bench machineName=\"last\" os=\"linux\">"
                               "<test name=\"mandel\" result=\"2\"/></bench></F>");
    fixture f;
    QCOMPARE(f.log.text, foundSome);
    QCOMPARE(f.own().getName(), QStringLiteral("last"));
    f.record(0);
    f.runner->storeUserData();
    QCOMPARE(directory->read(userFile).count("<bench "), 1);
    QVERIFY(directory->read(userFile).contains("machineName=\"last\""));
}

void tst_userStore::absurdValues_data()
{
    QTest::addColumn<QByteArray>("number");
    QTest::addColumn<QByteArray>("clock");
    QTest::addColumn<QByteArray>("threads");
    QTest::addColumn<QByteArray>("result");
    QTest::newRow("nan") << QByteArray("nan") << QByteArray("0") << QByteArray("0")
                         << QByteArray("nan");
    QTest::newRow("inf") << QByteArray("inf") << QByteArray("18000000404716257280")
                         << QByteArray("0") << QByteArray("inf");
    QTest::newRow("minus inf") << QByteArray("-inf") << QByteArray("0") << QByteArray("0")
                               << QByteArray("-inf");
    QTest::newRow("negative") << QByteArray("-5") << QByteArray("0") << QByteArray("-5")
                              << QByteArray("-5");
    QTest::newRow("huge") << QByteArray("1e30") << QByteArray("18000000404716257280")
                          << QByteArray("0") << QByteArray("1e+30");
    QTest::newRow("beyond a float") << QByteArray("1e300") << QByteArray("18000000404716257280")
                                    << QByteArray("0") << QByteArray("inf");
    QTest::newRow("no number") << QByteArray("much") << QByteArray("0") << QByteArray("0")
                               << QByteArray("0");
}

void tst_userStore::absurdValues()
{
    QFETCH(QByteArray, number);
    directory->write(userFile, "<F><bench machineName=\"m\" os=\"o\" cpu=\"c\" clock=\"" + number
                                   + "\" threadCount=\"" + number
                                   + "\"><test name=\"mandel\" result=\"" + number
                                   + "\"/></bench></F>");
    fixture f;
    f.runner->storeUserData();
    const QByteArray content = directory->read(userFile);
    QFETCH(QByteArray, clock);
    QFETCH(QByteArray, threads);
    QFETCH(QByteArray, result);
    QVERIFY2(content.contains(" clock=\"" + clock + "\" threadCount=\"" + threads + "\""), content);
    QVERIFY2(content.contains("name=\"mandel\" result=\"" + result + "\""), content);
}

void tst_userStore::cutOffFileKeepsWhatItHas()
{
    directory->write(userFile, "<F><bench machineName=\"m\" os=\"o\"><test name=\"mandel\" "
                               "result=\"7\"/><test name=\"colo");
    fixture f;
    QCOMPARE(f.log.text, foundSome);
    QCOMPARE(f.result("mandel"), 7.0F);
    QCOMPARE(f.own().getTests().size(), 1);
}

void tst_userStore::removedTwice()
{
    fixture f;
    f.runner->storeUserData();
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QVERIFY(!QFile::exists(directory->path(userFile)));
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QCOMPARE(f.logOfLoad(), foundNone);
}

void tst_userStore::noDirectory()
{
    qputenv("XDG_DATA_HOME", "/proc/none");
    fixture f;
    const QString cannot =
        QStringLiteral("cant create userdata directory '%1'\n")
            .arg(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    QCOMPARE(f.log.text, cannot + foundNone);
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData),
             cannot + QStringLiteral("Can't store userdata (directory not writable)\n"));
    QVERIFY(!f.wasDone);
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData),
             cannot + QStringLiteral("Can not remove user benchmark data (doesn't exists)\n"));
}

void tst_userStore::noHome()
{
    const QByteArray home = qgetenv("HOME");
    qunsetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    {
        const ordinaryUser user;
        fixture f;
        QVERIFY(f.log.text.startsWith(QStringLiteral("cant create userdata directory '")));
        QVERIFY(f.log.text.endsWith(foundNone));
        QVERIFY(f.logOf(&benchDataAccess::storeUserData)
                    .endsWith(QStringLiteral("Can't store userdata (directory not writable)\n")));
    }
    qputenv("HOME", home);
}

void tst_userStore::readOnlyDirectory()
{
    fixture f;
    f.runner->storeUserData();
    const QByteArray before = directory->read(userFile);
    f.record(0);
    // Open to others from its root on, and closed to writing by all.
    QCOMPARE(chmod(QFile::encodeName(directory->rootPath()).constData(), 0755), 0);
    const QByteArray place = QFile::encodeName(directory->path());
    QCOMPARE(chmod(place.constData(), 0555), 0);
    {
        const ordinaryUser user;
        QCOMPARE(f.logOf(&benchDataAccess::storeUserData), notWritable);
        QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    }
    QCOMPARE(chmod(place.constData(), 0755), 0);
    QCOMPARE(directory->read(userFile), before);
}

void tst_userStore::fullDiskKeepsTheFile()
{
    fixture f;
    f.runner->storeUserData();
    const QByteArray before = directory->read(userFile);
    f.record(0);
    {
        const fullDisk disk;
        f.wasDone = true;
        QCOMPARE(f.logOf(&benchDataAccess::storeUserData), notWritable);
        QVERIFY(!f.wasDone);
    }
    QCOMPARE(directory->read(userFile), before);
    QCOMPARE(QDir(directory->path()).entryList(QDir::Files), QStringList(userFile));
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), stored);
    QVERIFY(directory->read(userFile) != before);
}

void tst_userStore::nothingLoaded()
{
    textLog log;
    benchDataAccess data(&log, {});
    data.storeUserData();
    QCOMPARE(log.text, stored);
    data.loadUserData();
    QVERIFY(log.text.endsWith(foundNone));
}

QTEST_GUILESS_MAIN(tst_userStore)
#include "tst_userStore.moc"
