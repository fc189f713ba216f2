// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "support/dataDirectory.h"
#include "userStoreFixture.h"

#include <QtTest>

#include <cmath>

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
    void severalMachines();
    void removedTwice();
    void nothingLoaded();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_userStore::firstStart()
{
    userStoreFixture f;
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
    userStoreFixture f;
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
    userStoreFixture f;
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

    userStoreFixture again;
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
        userStoreFixture f;
        f.runner->storeUserData();
    }
    QCOMPARE(userStoreFixture().own().getName(), name);
    // A character that no XML can hold must not cost the results.
    directory->write(userFile, {});
    qputenv("COMPUTERNAME", "bell\a\x1B end");
    {
        userStoreFixture f;
        f.runner->storeUserData();
    }
    qunsetenv("COMPUTERNAME");
    QCOMPARE(userStoreFixture().own().getName(), QStringLiteral("bell\uFFFD\uFFFD end"));
}

void tst_userStore::storedMachineIsKept()
{
    // The file says who the machine was when it was measured.
    directory->write(userFile, "<F><bench machineName=\"OLD\" os=\"android\" cpu=\"c\" clock=\"1\" "
                               "threadCount=\"3\"/></F>");
    userStoreFixture f;
    QCOMPARE(f.own().getName(), QStringLiteral("OLD"));
    QCOMPARE(f.own().getOs(), QStringLiteral("android"));
    // A result is only recorded for a test that has an entry.
    f.record(0);
    QVERIFY(f.own().isMeasured());
    QVERIFY(f.own().getTests().isEmpty());
}

void tst_userStore::severalMachines()
{
    directory->write(userFile, "<F><bench machineName=\"first\" os=\"linux\"/>"
                               "<bench machineName=\"last\" os=\"linux\">"
                               "<test name=\"mandel\" result=\"2\"/></bench></F>");
    userStoreFixture f;
    QCOMPARE(f.log.text, foundSome);
    QCOMPARE(f.own().getName(), QStringLiteral("last"));
    f.record(0);
    f.runner->storeUserData();
    QCOMPARE(directory->read(userFile).count("<bench "), 1);
    QVERIFY(directory->read(userFile).contains("machineName=\"last\""));
}

void tst_userStore::removedTwice()
{
    userStoreFixture f;
    f.runner->storeUserData();
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QVERIFY(!QFile::exists(directory->path(userFile)));
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QCOMPARE(f.logOfLoad(), foundNone);
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
