// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "referenceFixture.h"
#include "support/dataDirectory.h"

#include <QtTest>

class tst_referenceUpdate : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void onlineIsNewer();
    void onlineIsNotNewer_data();
    void onlineIsNotNewer();
    void strangeVersions_data();
    void strangeVersions();
    void failedDownloadUsesBuiltIn();
    void downloadWithoutMachines_data();
    void downloadWithoutMachines();
    void versionIsWrittenAfterTheList();
    void beta();
    void failedBeta();
    void betaIsReplacedByAnyVersion();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_referenceUpdate::onlineIsNewer()
{
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "1011"},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version 1011 (local 1010)\n"
                                        "Update DB successfully\n")
                             + useLocal + found(1, 1));
    QCOMPARE(a.names(), QStringList(QStringLiteral("Online")));
    QCOMPARE(a.requests, QVector<int>({0, 1}));
    QCOMPARE(directory->read(dbFile), listOf("Online"));
    QCOMPARE(directory->read(versionFile), QByteArray("1011"));
}

void tst_referenceUpdate::onlineIsNotNewer_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::newRow("same") << QByteArray("1500");
    QTest::newRow("older") << QByteArray("1499");
}

void tst_referenceUpdate::onlineIsNotNewer()
{
    QFETCH(QByteArray, online);
    QVERIFY(directory->write(dbFile, listOf("Local")));
    QVERIFY(directory->write(versionFile, "1500"));
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, online},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version %1 (local 1500)\n")
                                 .arg(QString::fromLatin1(online))
                             + useLocal + found(1, 1));
    QCOMPARE(a.requests, QVector<int>({0}));
}

void tst_referenceUpdate::strangeVersions_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::addColumn<QString>("shown");
    QTest::newRow("text") << QByteArray("<html>") << QStringLiteral("0");
    QTest::newRow("negative") << QByteArray("-5") << QStringLiteral("0");
    QTest::newRow("2^32") << QByteArray("4294967296") << QStringLiteral("0");
}

void tst_referenceUpdate::strangeVersions()
{
    QFETCH(QByteArray, online);
    QFETCH(QString, shown);
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, online}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.startsWith(
        QStringLiteral("Online database has version %1 (local 1010)\n").arg(shown)));
    QCOMPARE(a.requests, QVector<int>({0}));
}

void tst_referenceUpdate::failedDownloadUsesBuiltIn()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "2000"}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version 2000 (local 1010)\n")
                             + useBuiltIn + foundBuiltIn());
    QCOMPARE(directory->read(dbFile), listOf("Local"));
}

void tst_referenceUpdate::downloadWithoutMachines_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no machine") << QByteArray("<Fennick/>");
    QTest::newRow("machine without attributes") << QByteArray("<Fennick><bench/></Fennick>");
    QTest::newRow("fault before the first") << QByteArray("<Fennick></bench><bench os='o'/>");
    QTest::newRow("another page") << QByteArray(
        "<html><body class='x'>Please log in</body></html>");
}

void tst_referenceUpdate::downloadWithoutMachines()
{
    QFETCH(QByteArray, list);
    QVERIFY(directory->write(dbFile, listOf("Local")));
    QVERIFY(directory->write(versionFile, "1500"));
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "2000"},
                         {onlineDatabase::reference, list},
                         {onlineDatabase::betaReference, list}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version 2000 (local 1500)\n")
                             + useBuiltIn + foundBuiltIn());
    a.log.text.clear();
    a.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(a.log.text, useBuiltIn + foundBuiltIn());
    QCOMPARE(directory->read(dbFile), listOf("Local"));
    QCOMPARE(directory->read(versionFile), QByteArray("1500"));
    QVERIFY(a.data->getLoadProblems().isEmpty());
}

/// A version that stood for a list that could not be written would keep the next start from asking
/// for it.
void tst_referenceUpdate::versionIsWrittenAfterTheList()
{
    QVERIFY(QDir().mkpath(directory->path(dbFile)));
    QVERIFY(directory->write(versionFile, "1500"));
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "2000"},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.endsWith(useBuiltIn + foundBuiltIn()));
    QCOMPARE(directory->read(versionFile), QByteArray("1500"));
}

void tst_referenceUpdate::beta()
{
    referenceFixture a;
    a.online->replies = {{onlineDatabase::betaReference, listOf("Beta")}};
    a.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(a.log.text,
             QStringLiteral("Update DB successfully (BETA)\n") + useLocal + found(1, 1));
    QCOMPARE(a.names(), QStringList(QStringLiteral("Beta")));
    QCOMPARE(a.requests, QVector<int>({2}));
    QCOMPARE(directory->read(versionFile), QByteArray("0"));
}

void tst_referenceUpdate::failedBeta()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(a.log.text, useBuiltIn + foundBuiltIn());
    QVERIFY(directory->read(versionFile).isNull());
}

void tst_referenceUpdate::betaIsReplacedByAnyVersion()
{
    QVERIFY(directory->write(dbFile, listOf("Beta")));
    QVERIFY(directory->write(versionFile, "0"));
    referenceFixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "1"},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.startsWith(
        QStringLiteral("Online database has version 1 (local BETA)\nUpdate DB successfully\n")));
    QCOMPARE(directory->read(versionFile), QByteArray("1"));
}

QTEST_GUILESS_MAIN(tst_referenceUpdate)
#include "tst_referenceUpdate.moc"
