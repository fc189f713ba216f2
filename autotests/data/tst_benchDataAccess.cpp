// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "referenceFixture.h"
#include "support/dataDirectory.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QBuffer>
#include <QProcess>
#include <QtTest>

class tst_benchDataAccess : public QObject
{
    Q_OBJECT

private slots:
    void init() { directory = std::make_unique<dataDirectory>(); }
    void cleanup() { directory.reset(); }

    void builtIn();
    void noDatabase();
    void localList();
    void unreadableLocalList();
    void builtInIgnoresLocalList();
    void problems_data();
    void problems();
    void problemsOfTheLatestLoad();
    void localVersions_data();
    void localVersions();
    void noDirectory();
    void reloadClears();
    void uniqueDevices();
    void unopenedDevice();
    void thisMachine();
    void printsToStandardOutput();

private:
    std::unique_ptr<dataDirectory> directory;
};

void tst_benchDataAccess::builtIn()
{
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    QCOMPARE(a.data->getResults().size(), 167);
    QCOMPARE(a.log.text, useBuiltIn + found(167, 151));
    QVERIFY(a.requests.isEmpty());
    for (const benchResults &machine : a.data->getResults()) {
        QVERIFY(!machine.getName().isEmpty());
        QVERIFY(machine.getFrequency() > 1e8F);
        QVERIFY(machine.getThreads() > 0);
    }
}

void tst_benchDataAccess::noDatabase()
{
    textLog log;
    benchDataAccess data(&log, {});
    data.loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(log.text, noOnline + useBuiltIn + foundBuiltIn());
}

void tst_benchDataAccess::localList()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + useLocal + found(1, 1));
    QCOMPARE(a.names(), QStringList(QStringLiteral("Local")));
}

void tst_benchDataAccess::unreadableLocalList()
{
    QVERIFY(directory->write(dbFile, "garbage"));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + useLocal + found(0, 0));
}

void tst_benchDataAccess::builtInIgnoresLocalList()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    QCOMPARE(a.log.text, useBuiltIn + foundBuiltIn());
}

void tst_benchDataAccess::problems_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::addColumn<int>("machines");
    QTest::addColumn<QString>("problem");
    QTest::newRow("none") << listOf("A") << 1 << QString();
    QTest::newRow("fault in the middle")
        << QByteArray("<F>\n<bench machineName='A'/>\n</bench>\n<bench machineName='B'/>\n</F>")
        << 1 << QStringLiteral("'%1' has a fault in line 3: what follows it is left out");
    QTest::newRow("without its end")
        << listOf("A").chopped(3) << 1
        << QStringLiteral("'%1' has a fault in line 1: what follows it is left out");
    QTest::newRow("too long") << listOf("A") + QByteArray(int(maximumXmlSize), '\n') << 1
                              << QStringLiteral("'%1' is too long: what follows line 16777163 is "
                                                "left out");
}

/// The log keeps to its messages; the problems are for whoever asks.
void tst_benchDataAccess::problems()
{
    QFETCH(QByteArray, list);
    QFETCH(int, machines);
    QFETCH(QString, problem);
    QVERIFY(directory->write(dbFile, list));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + useLocal + found(machines, machines));
    const QStringList expected =
        problem.isEmpty() ? QStringList() : QStringList(problem.arg(directory->path(dbFile)));
    QCOMPARE(a.data->getLoadProblems(), expected);
}

void tst_benchDataAccess::problemsOfTheLatestLoad()
{
    const QString userFile = QStringLiteral("user_data.xml");
    QVERIFY(directory->write(dbFile, "<F></G>"));
    QVERIFY(directory->write(userFile, "<F>\n<bench os='o'/>\n"));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    a.data->loadUserData();
    const QStringList expected = {
        QStringLiteral("'%1' has a fault in line 1: what follows it is left out")
            .arg(directory->path(dbFile)),
        QStringLiteral("'%1' has a fault in line 3: what follows it is left out")
            .arg(directory->path(userFile))};
    QCOMPARE(a.data->getLoadProblems(), expected);
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    QVERIFY(a.data->getLoadProblems().isEmpty());
    QVERIFY(QFile::remove(directory->path(userFile)));
    QVERIFY(QDir().mkpath(directory->path(userFile)));
    a.data->loadUserData();
    QCOMPARE(a.data->getLoadProblems().size(), 1);
    QVERIFY2(a.data->getLoadProblems().first().startsWith(
                 QStringLiteral("'%1' cannot be read: ").arg(directory->path(userFile))),
             qPrintable(a.data->getLoadProblems().first()));
}

void tst_benchDataAccess::localVersions_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<quint32>("version");
    QTest::newRow("no file") << QByteArray() << 1010U;
    QTest::newRow("number") << QByteArray("1234") << 1234U;
    QTest::newRow("line end") << QByteArray("1234\n") << 1234U;
    QTest::newRow("beta") << QByteArray("0") << 0U;
    QTest::newRow("text") << QByteArray("abc") << 0U;
    QTest::newRow("empty") << QByteArray("") << 0U;
}

void tst_benchDataAccess::localVersions()
{
    QFETCH(QByteArray, content);
    if (!content.isNull())
        QVERIFY(directory->write(versionFile, content));
    referenceFixture a;
    QTEST(a.data->localVersion(), "version");
}

void tst_benchDataAccess::noDirectory()
{
    // A file where the directory should be.
    const QString location = directory->rootPath() + QStringLiteral("/file/fennick");
    QFile file(directory->rootPath() + QStringLiteral("/file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.close();
    qputenv("XDG_DATA_HOME", QFile::encodeName(file.fileName()));
    referenceFixture a;
    bool ok = true;
    a.data->userDataDirectory(ok);
    QVERIFY(!ok);
    const QString message = QStringLiteral("cant create userdata directory '%1'\n").arg(location);
    QCOMPARE(a.log.text, message);
    QCOMPARE(a.data->localVersion(), 1010U);

    a.log.text.clear();
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + message + useBuiltIn + foundBuiltIn());
}

void tst_benchDataAccess::reloadClears()
{
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    const QStringList names = a.names();
    a.data->loadUserData();
    QCOMPARE(a.names().size(), names.size() + 1);
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    QCOMPARE(a.names(), names);
}

void tst_benchDataAccess::uniqueDevices()
{
    QVERIFY(directory->write(dbFile, "<r><bench machineName='PC'/><bench machineName='pc'/>"
                                     "<bench machineName='pc2'/></r>"));
    referenceFixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.endsWith(found(3, 2)));
}

void tst_benchDataAccess::unopenedDevice()
{
    referenceFixture a;
    QFile missing(directory->path(QStringLiteral("missing.xml")));
    a.data->parseXml(missing);
    QVERIFY(a.names().isEmpty());
    QVERIFY(a.log.text.isEmpty());

    QByteArray xml = listOf("X");
    QBuffer buffer(&xml);
    a.data->parseXml(buffer);
    QCOMPARE(a.names(), QStringList(QStringLiteral("X")));
    QVERIFY(!buffer.isOpen());
}

void tst_benchDataAccess::thisMachine()
{
    fakeTest first(QStringLiteral("one"), nullptr);
    fakeTest second(QStringLiteral("two"), nullptr);
    second.setSingleOnly(true);
    textLog log;
    benchDataAccess data(&log, {&first, &second});
    qputenv("COMPUTERNAME", "LAB7");
    data.loadReferenceData(benchDataAccess::builtInReference);
    log.text.clear();
    data.loadUserData();
    qunsetenv("COMPUTERNAME");
    QCOMPARE(log.text, QStringLiteral("Found no local user benchmark data\n"));
    const benchResults machine = data.getResults().last();
    QCOMPARE(machine.getName(), QStringLiteral("LAB7"));
    QCOMPARE(machine.getTests().keys(),
             QStringList({QStringLiteral("one"), QStringLiteral("two")}));
    QCOMPARE(machine.getTests().first().value, 0.0F);
    QVERIFY(!machine.isMeasured());
}

void tst_benchDataAccess::printsToStandardOutput()
{
    // A second process of this test, which only prints.
    if (qEnvironmentVariableIsSet("FENNICK_TEST_PRINT")) {
        benchDataAccess(nullptr, {}).print(QStringLiteral("to %1 standard\noutput"));
        std::_Exit(0);
    }
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("FENNICK_TEST_PRINT"), QStringLiteral("1"));
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(),
                  {QStringLiteral("-silent"), QStringLiteral("printsToStandardOutput")});
    QVERIFY(process.waitForFinished());
    QVERIFY(process.readAllStandardOutput().endsWith("to %1 standard\noutput"));
}

QTEST_GUILESS_MAIN(tst_benchDataAccess)
#include "tst_benchDataAccess.moc"
