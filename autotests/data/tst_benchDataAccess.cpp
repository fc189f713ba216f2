// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/benchDataAccess.h"

#include "support/dataDirectory.h"
#include "support/fakeTest.h"
#include "support/textLog.h"

#include <QBuffer>
#include <QProcess>
#include <QtTest>

namespace
{

const QString dbFile = QStringLiteral("db.xml");
const QString versionFile = QStringLiteral("db_version");

const QString noOnline = QStringLiteral("No online database found\n");
const QString useBuiltIn = QStringLiteral("Use internal benchmark DB\n");
const QString useLocal = QStringLiteral("Use local benchmark DB\n");

QByteArray listOf(const QByteArray &name)
{
    return "<Fennick><bench machineName=\"" + name + "\" os=\"linux\"/></Fennick>";
}

/// An online database that answers as it is told and writes down the requests.
class fakeOnline : public onlineDatabase
{
public:
    explicit fakeOnline(QVector<int> *requestLog) : requests(requestLog) {}

    bool request(int requested, QByteArray &data) override
    {
        requests->append(requested);
        if (!replies.contains(requested))
            return false;
        data = replies.value(requested);
        return true;
    }

    QMap<int, QByteArray> replies;

private:
    QVector<int> *requests;
};

/// A data access with a log and a fake online database.
struct fixture {
    fixture()
    {
        auto database = std::make_unique<fakeOnline>(&requests);
        online = database.get();
        data = std::make_unique<benchDataAccess>(&log, QVector<testBase *>(), std::move(database));
    }

    QStringList names() const
    {
        QStringList list;
        for (const benchResults &machine : data->getResults())
            list.append(machine.getName());
        return list;
    }

    textLog log;
    QVector<int> requests;
    fakeOnline *online = nullptr;
    std::unique_ptr<benchDataAccess> data;
};

QString found(int devices, int unique)
{
    return QStringLiteral("Found %1 devices (%2 unique)\n")
        .arg(QString::number(devices), QString::number(unique));
}

QString foundBuiltIn()
{
    textLog log;
    benchDataAccess data(&log, {});
    data.loadReferenceData(benchDataAccess::builtInReference);
    return log.text.mid(useBuiltIn.size());
}

} // namespace

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
    void onlineIsNewer();
    void onlineIsNotNewer_data();
    void onlineIsNotNewer();
    void strangeVersions_data();
    void strangeVersions();
    void failedDownloadUsesBuiltIn();
    void downloadWithoutMachines_data();
    void downloadWithoutMachines();
    void versionIsWrittenAfterTheList();
    void problems_data();
    void problems();
    void problemsOfTheLatestLoad();
    void beta();
    void failedBeta();
    void betaIsReplacedByAnyVersion();
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
    fixture a;
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
    fixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + useLocal + found(1, 1));
    QCOMPARE(a.names(), QStringList(QStringLiteral("Local")));
}

void tst_benchDataAccess::unreadableLocalList()
{
    QVERIFY(directory->write(dbFile, "garbage"));
    fixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, noOnline + useLocal + found(0, 0));
}

void tst_benchDataAccess::builtInIgnoresLocalList()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    fixture a;
    a.data->loadReferenceData(benchDataAccess::builtInReference);
    QCOMPARE(a.log.text, useBuiltIn + foundBuiltIn());
}

void tst_benchDataAccess::onlineIsNewer()
{
    fixture a;
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

void tst_benchDataAccess::onlineIsNotNewer_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::newRow("same") << QByteArray("1500");
    QTest::newRow("older") << QByteArray("1499");
}

void tst_benchDataAccess::onlineIsNotNewer()
{
    QFETCH(QByteArray, online);
    QVERIFY(directory->write(dbFile, listOf("Local")));
    QVERIFY(directory->write(versionFile, "1500"));
    fixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, online},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version %1 (local 1500)\n")
                                 .arg(QString::fromLatin1(online))
                             + useLocal + found(1, 1));
    QCOMPARE(a.requests, QVector<int>({0}));
}

void tst_benchDataAccess::strangeVersions_data()
{
    QTest::addColumn<QByteArray>("online");
    QTest::addColumn<QString>("shown");
    QTest::newRow("text") << QByteArray("<html>") << QStringLiteral("0");
    QTest::newRow("negative") << QByteArray("-5") << QStringLiteral("0");
    QTest::newRow("2^32") << QByteArray("4294967296") << QStringLiteral("0");
}

void tst_benchDataAccess::strangeVersions()
{
    QFETCH(QByteArray, online);
    QFETCH(QString, shown);
    fixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, online}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.startsWith(
        QStringLiteral("Online database has version %1 (local 1010)\n").arg(shown)));
    QCOMPARE(a.requests, QVector<int>({0}));
}

void tst_benchDataAccess::failedDownloadUsesBuiltIn()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    fixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "2000"}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QCOMPARE(a.log.text, QStringLiteral("Online database has version 2000 (local 1010)\n")
                             + useBuiltIn + foundBuiltIn());
    QCOMPARE(directory->read(dbFile), listOf("Local"));
}

void tst_benchDataAccess::downloadWithoutMachines_data()
{
    QTest::addColumn<QByteArray>("list");
    QTest::newRow("no machine") << QByteArray("<Fennick/>");
    QTest::newRow("machine without attributes") << QByteArray("<Fennick><bench/></Fennick>");
    QTest::newRow("fault before the first") << QByteArray("<Fennick></bench><bench os='o'/>");
    QTest::newRow("another page") << QByteArray(
        "<html><body class='x'>Please log in</body></html>");
}

void tst_benchDataAccess::downloadWithoutMachines()
{
    QFETCH(QByteArray, list);
    QVERIFY(directory->write(dbFile, listOf("Local")));
    QVERIFY(directory->write(versionFile, "1500"));
    fixture a;
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
void tst_benchDataAccess::versionIsWrittenAfterTheList()
{
    QVERIFY(QDir().mkpath(directory->path(dbFile)));
    QVERIFY(directory->write(versionFile, "1500"));
    fixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "2000"},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.endsWith(useBuiltIn + foundBuiltIn()));
    QCOMPARE(directory->read(versionFile), QByteArray("1500"));
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
    fixture a;
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
    fixture a;
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

void tst_benchDataAccess::beta()
{
    fixture a;
    a.online->replies = {{onlineDatabase::betaReference, listOf("Beta")}};
    a.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(a.log.text,
             QStringLiteral("Update DB successfully (BETA)\n") + useLocal + found(1, 1));
    QCOMPARE(a.names(), QStringList(QStringLiteral("Beta")));
    QCOMPARE(a.requests, QVector<int>({2}));
    QCOMPARE(directory->read(versionFile), QByteArray("0"));
}

void tst_benchDataAccess::failedBeta()
{
    QVERIFY(directory->write(dbFile, listOf("Local")));
    fixture a;
    a.data->loadReferenceData(benchDataAccess::betaReference);
    QCOMPARE(a.log.text, useBuiltIn + foundBuiltIn());
    QVERIFY(directory->read(versionFile).isNull());
}

void tst_benchDataAccess::betaIsReplacedByAnyVersion()
{
    QVERIFY(directory->write(dbFile, listOf("Beta")));
    QVERIFY(directory->write(versionFile, "0"));
    fixture a;
    a.online->replies = {{onlineDatabase::referenceVersion, "1"},
                         {onlineDatabase::reference, listOf("Online")}};
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.startsWith(
        QStringLiteral("Online database has version 1 (local BETA)\nUpdate DB successfully\n")));
    QCOMPARE(directory->read(versionFile), QByteArray("1"));
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
    fixture a;
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
    fixture a;
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
    fixture a;
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
    fixture a;
    a.data->loadReferenceData(benchDataAccess::normalReference);
    QVERIFY(a.log.text.endsWith(found(3, 2)));
}

void tst_benchDataAccess::unopenedDevice()
{
    fixture a;
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
