// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "support/dataDirectory.h"
#include "support/systemFaults.h"
#include "userStoreFixture.h"

#include <QtTest>

#include <sys/stat.h>

class tst_userStoreFaults : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void unreadableFile_data();
    void unreadableFile();
    void directoryInPlaceOfTheFile();
    void absurdValues_data();
    void absurdValues();
    void cutOffFileKeepsWhatItHas();
    void noDirectory();
    void noHome();
    void readOnlyDirectory();
    void fullDiskKeepsTheFile();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_userStoreFaults::unreadableFile_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("cut off") << QByteArray("<?xml version=\"1.0\"?><Fennick><bench machineNa");
    QTest::newRow("no XML") << QByteArray("%PDF-1.4 \0\xFF\xFE", 12);
    QTest::newRow("no machine") << QByteArray("<Fennick><test name=\"mandel\" result=\"1\"/>"
                                              "</Fennick>");
}

void tst_userStoreFaults::unreadableFile()
{
    QFETCH(QByteArray, content);
    directory->write(userFile, content);
    userStoreFixture f;
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

void tst_userStoreFaults::directoryInPlaceOfTheFile()
{
    QDir().mkpath(directory->path(userFile));
    userStoreFixture f;
    QVERIFY(f.log.text.contains(QStringLiteral("user_data.xml' cannot be read; it is kept")));
    QVERIFY(f.log.text.endsWith(foundNone));
    QCOMPARE(f.logOf(&benchDataAccess::storeUserData), notWritable);
    QCOMPARE(f.logOf(&benchDataAccess::removeUserData), removed);
    QVERIFY(QFileInfo(directory->path(userFile)).isDir());
}

void tst_userStoreFaults::absurdValues_data()
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

void tst_userStoreFaults::absurdValues()
{
    QFETCH(QByteArray, number);
    directory->write(userFile, "<F><bench machineName=\"m\" os=\"o\" cpu=\"c\" clock=\"" + number
                                   + "\" threadCount=\"" + number
                                   + "\"><test name=\"mandel\" result=\"" + number
                                   + "\"/></bench></F>");
    userStoreFixture f;
    f.runner->storeUserData();
    const QByteArray content = directory->read(userFile);
    QFETCH(QByteArray, clock);
    QFETCH(QByteArray, threads);
    QFETCH(QByteArray, result);
    QVERIFY2(content.contains(" clock=\"" + clock + "\" threadCount=\"" + threads + "\""), content);
    QVERIFY2(content.contains("name=\"mandel\" result=\"" + result + "\""), content);
}

void tst_userStoreFaults::cutOffFileKeepsWhatItHas()
{
    directory->write(userFile, "<F><bench machineName=\"m\" os=\"o\"><test name=\"mandel\" "
                               "result=\"7\"/><test name=\"colo");
    userStoreFixture f;
    QCOMPARE(f.log.text, foundSome);
    QCOMPARE(f.result("mandel"), 7.0F);
    QCOMPARE(f.own().getTests().size(), 1);
}

void tst_userStoreFaults::noDirectory()
{
    qputenv("XDG_DATA_HOME", "/proc/none");
    userStoreFixture f;
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

void tst_userStoreFaults::noHome()
{
    const QByteArray home = qgetenv("HOME");
    qunsetenv("HOME");
    qunsetenv("XDG_DATA_HOME");
    {
        const ordinaryUser user;
        userStoreFixture f;
        QVERIFY(f.log.text.startsWith(QStringLiteral("cant create userdata directory '")));
        QVERIFY(f.log.text.endsWith(foundNone));
        QVERIFY(f.logOf(&benchDataAccess::storeUserData)
                    .endsWith(QStringLiteral("Can't store userdata (directory not writable)\n")));
    }
    qputenv("HOME", home);
}

void tst_userStoreFaults::readOnlyDirectory()
{
    userStoreFixture f;
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

void tst_userStoreFaults::fullDiskKeepsTheFile()
{
    userStoreFixture f;
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

QTEST_GUILESS_MAIN(tst_userStoreFaults)
#include "tst_userStoreFaults.moc"
