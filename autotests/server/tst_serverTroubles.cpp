// SPDX-License-Identifier: GPL-3.0-or-later

// The real server among slow clients, signals, databases that go and processes that are killed.

#include "data/benchXml.h"
#include "data/httpDatabase.h"
#include "server/resultStore.h"

#include "postgresServer.h"
#include "support/serverProcess.h"
#include "support/uploads.h"
#include "support/wholeRuns.h"

#include <QSet>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <memory>
#include <thread>
#include <vector>

class tst_serverTroubles : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { postgres.reset(); }

    void databaseThatCannotBeOpened();
    void outputThatIsClosed();
    void endsOnSignals_data();
    void endsOnSignals();
    void finishesWhatIsInFlight();
    void secondSignalEndsAtOnce_data() { endsOnSignals_data(); }
    void secondSignalEndsAtOnce();
    void silentClients();
    void drippingClient();
    void manySlowClients();
    void twoProcessesOnOneDatabase();
    void healthWithoutADatabase();
    void killedUnderLoad_data();
    void killedUnderLoad();

private:
    QString sqlite()
    {
        return QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("%1.db").arg(++files));
    }

    QTemporaryDir directory;
    int files = 0;
    std::unique_ptr<postgresServer> postgres;
};

namespace
{

/// Uploads to the server without a limit per address.
const QStringList noLimit = {QStringLiteral("--upload-limit"), QStringLiteral("0/1")};

/// Sends the head of a request for @p size bytes, and asks for a word when it has been read.
void sendHead(rawClient &client, int size)
{
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                + QByteArray::number(size) + "\r\nExpect: 100-continue\r\n\r\n");
}

/// Waits until the server has read the head, and waits for the body.
bool isHeadRead(rawClient &client)
{
    return client.socket.waitForReadyRead(20'000)
           && client.socket.readAll().startsWith("HTTP/1.1 100 ");
}

/// Waits until the server has said that it is ending.
bool isEnding(serverProcess &server)
{
    server.process.setReadChannel(QProcess::StandardError);
    QByteArray log = server.process.readAllStandardError();
    while (!log.contains("ending") && server.process.waitForReadyRead(20'000))
        log += server.process.readAllStandardError();
    return log.contains("ending");
}

/// Uploads one result after the other until the server is gone, counting those that are
/// acknowledged in @p count too; their numbers.
std::vector<int> uploadUntilKilled(quint16 port, int from, std::atomic<int> &count)
{
    std::vector<int> acknowledged;
    rawClient client(port);
    for (int i = from; client.socket.state() == QAbstractSocket::ConnectedState; ++i) {
        const QByteArray xml =
            uploadXml("m" + QByteArray::number(i), "Any CPU", QByteArray::number(1 + i % 900));
        if (statusOf(client.post(uploadForm(xml))) == 200) {
            acknowledged.push_back(i);
            ++count;
        }
    }
    return acknowledged;
}

/// The XML of a whole run of a processor.
QByteArray sharedRun(int number)
{
    const benchResults run =
        wholeRun(QStringLiteral("Shared CPU"), 1.0F + 0.1F * static_cast<float>(number));
    return "<F>" + stored(run).content + "</F>";
}

} // namespace

void tst_serverTroubles::initTestCase()
{
    postgres = std::make_unique<postgresServer>();
    QVERIFY2(postgres->lastOutput.isEmpty(), qPrintable(postgres->lastOutput));
}

void tst_serverTroubles::databaseThatCannotBeOpened()
{
    for (const char *database : {"sqlite:/proc/none/x.db", "postgresql:///x?host=/proc/none"}) {
        for (const char *command : {"serve", "publish", "list", "export"}) {
            const auto result =
                serverProcess::run({QString::fromLatin1(command), QStringLiteral("--database"),
                                    QString::fromLatin1(database)});
            QCOMPARE(result.code, 1);
            QVERIFY2(result.err.startsWith(
                         QStringLiteral("fennick-server: the database cannot be opened: ")),
                     qPrintable(result.err));
        }
    }
}

/// The connection to the database does not get the number of a standard handle that is missing.
void tst_serverTroubles::outputThatIsClosed()
{
    const QString database = postgres->newDatabase();
    QVERIFY(resultStore(*parseDatabaseAddress(database)).open());
    QProcess process;
    process.start(QStringLiteral("sh"),
                  {QStringLiteral("-c"),
                   QStringLiteral("exec \"$0\" list --database \"$1\" >&- 0>&-"),
                   QStringLiteral(FENNICK_SERVER), database});
    QVERIFY(process.waitForFinished(60'000));
    QCOMPARE(process.exitCode(), 1);
    QCOMPARE(process.readAllStandardError(),
             QByteArray("fennick-server: the output is not complete: standard output cannot be "
                        "written\n"));
}

void tst_serverTroubles::endsOnSignals_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_serverTroubles::endsOnSignals()
{
    QFETCH(int, number);
    serverProcess server(sqlite());
    const rawClient idle(server.port); // does not hold it up
    kill(static_cast<pid_t>(server.process.processId()), number);
    QVERIFY(server.process.waitForFinished(5'000));
    QCOMPARE(server.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.process.exitCode(), 0);
}

void tst_serverTroubles::finishesWhatIsInFlight()
{
    const QString database = sqlite();
    serverProcess server(database);
    rawClient client(server.port);
    const QByteArray body = uploadForm(uploadXml("a", "b", "1"));
    sendHead(client, body.size());
    QVERIFY(isHeadRead(client));
    client.send(body.left(20));
    server.process.terminate();
    QVERIFY(isEnding(server));
    client.send(body.mid(20));
    QCOMPARE(statusOf(client.response()), 200);
    QVERIFY(server.process.waitForFinished(15'000));
    QCOMPARE(server.process.exitCode(), 0);
    QCOMPARE(listed(database), 1);
}

/// A request whose rest never comes holds the end up for seconds, but not a second time.
void tst_serverTroubles::secondSignalEndsAtOnce()
{
    QFETCH(int, number);
    serverProcess server(sqlite());
    const auto id = static_cast<pid_t>(server.process.processId());
    rawClient client(server.port);
    sendHead(client, 100);
    QVERIFY(isHeadRead(client));
    kill(id, number);
    QVERIFY(isEnding(server));
    kill(id, number);
    QVERIFY(server.process.waitForFinished(30'000));
    QCOMPARE(server.process.exitCode(), 128 + number);
}

void tst_serverTroubles::silentClients()
{
    const serverProcess server(sqlite());
    rawClient silent(server.port);
    rawClient half(server.port);
    half.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nContent-Length: 100\r\n\r\napp=");
    QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 200);
    QVERIFY(silent.timeToClose(60'000) >= 0);
    QVERIFY(half.timeToClose(60'000) >= 0);
}

void tst_serverTroubles::drippingClient()
{
    const serverProcess server(sqlite());
    rawClient dripping(server.port);
    dripping.send("GET /health HTTP/1.1\r\nX: ");
    QElapsedTimer timer;
    timer.start();
    while (dripping.socket.state() == QAbstractSocket::ConnectedState && timer.elapsed() < 60'000) {
        dripping.send("x");
        dripping.socket.waitForReadyRead(200);
        dripping.socket.readAll();
    }
    // It is not the pauses that count, but the whole.
    QCOMPARE(dripping.socket.state(), QAbstractSocket::UnconnectedState);
    QVERIFY(timer.elapsed() >= 8'000);
}

void tst_serverTroubles::manySlowClients()
{
    // More of them than there are connections.
    const serverProcess server(sqlite(), {QStringLiteral("--connections"), QStringLiteral("40")});
    std::vector<std::unique_ptr<rawClient>> slow;
    for (int i = 0; i < 100; ++i) {
        slow.push_back(std::make_unique<rawClient>(server.port));
        slow.back()->send("GET /hea");
    }
    for (int i = 0; i < 5; ++i)
        QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 200);
}

void tst_serverTroubles::twoProcessesOnOneDatabase()
{
    const QString database = postgres->newDatabase();
    const serverProcess first(database);
    const serverProcess second(database);
    QVERIFY(first.isListening() && second.isListening());
    for (int i = 1; i <= 3; ++i) {
        const quint16 port = i % 2 == 0 ? first.port : second.port;
        QCOMPARE(statusOf(rawClient(port).post(uploadForm(sharedRun(i)))), 200);
    }
    // The same upload at the other one is still one.
    QCOMPARE(statusOf(rawClient(first.port).post(uploadForm(sharedRun(3)))), 200);
    QCOMPARE(listed(database), 3);
    QCOMPARE(serverProcess::run({QStringLiteral("publish"), QStringLiteral("--circle"),
                                 QStringLiteral("--database"), database})
                 .code,
             0);
    QByteArray lists[2];
    for (const serverProcess *server : {&first, &second}) {
        httpDatabase client(server->host());
        QByteArray version;
        QVERIFY(client.request(httpDatabase::referenceVersion, version));
        QVERIFY(version.toInt() > 1010);
        QVERIFY(client.request(httpDatabase::reference, lists[server == &first ? 0 : 1]));
    }
    QCOMPARE(lists[0], lists[1]);
    QVERIFY(lists[0].contains("Shared CPU"));
}

void tst_serverTroubles::healthWithoutADatabase()
{
    const serverProcess server(postgres->newDatabase());
    const auto health = [&server] {
        rawClient client(server.port);
        client.send("GET /health HTTP/1.1\r\nHost: x\r\n\r\n");
        return statusOf(client.response());
    };
    QCOMPARE(health(), 200);
    QVERIFY(postgres->stop());
    QCOMPARE(health(), 503);
    QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 503);
    QCOMPARE(statusOf(rawClient(server.port).post(uploadForm(uploadXml("a", "b", "1")))), 503);
    QVERIFY(postgres->start());
    QCOMPARE(health(), 200);
    QCOMPARE(statusOf(rawClient(server.port).post(uploadForm(uploadXml("a", "b", "1")))), 200);
}

void tst_serverTroubles::killedUnderLoad_data()
{
    QTest::addColumn<bool>("isSqlite");
    QTest::newRow("SQLite") << true;
    QTest::newRow("PostgreSQL") << false;
}

void tst_serverTroubles::killedUnderLoad()
{
    QFETCH(bool, isSqlite);
    const QString database = isSqlite ? sqlite() : postgres->newDatabase();
    constexpr int rounds = 4;
    constexpr int clients = 4;
    std::vector<int> acknowledged;
    for (int round = 0; round < rounds; ++round) {
        serverProcess server(database, noLimit);
        QVERIFY(server.isListening());
        std::vector<std::vector<int>> perClient(clients);
        std::vector<std::thread> threads;
        threads.reserve(clients);
        std::atomic<int> count = 0;
        for (int client = 0; client < clients; ++client) {
            threads.emplace_back([&, client] {
                perClient[static_cast<std::size_t>(client)] =
                    uploadUntilKilled(server.port, (round * clients + client) * 1'000'000, count);
            });
        }
        // In the midst of them, and each time elsewhere.
        const int enough = 15 + 7 * round;
        const bool isUnderLoad =
            QTest::qWaitFor([&count, enough] { return count >= enough; }, 60'000);
        kill(static_cast<pid_t>(server.process.processId()), SIGKILL);
        for (std::thread &thread : threads)
            thread.join();
        QVERIFY(isUnderLoad);
        for (const std::vector<int> &numbers : perClient)
            acknowledged.insert(acknowledged.end(), numbers.begin(), numbers.end());
    }
    QVERIFY2(acknowledged.size() > 50, qPrintable(QString::number(acknowledged.size())));
    const auto exported =
        serverProcess::run({QStringLiteral("export"), QStringLiteral("--database"), database});
    QCOMPARE(exported.code, 0);
    QSet<QString> found;
    for (const benchResults &machine : readMachines(exported.out.toUtf8())) {
        QCOMPARE(machine.getTests().size(), 1); // none is half
        found.insert(machine.getName());
    }
    for (const int number : acknowledged)
        QVERIFY2(found.contains(QStringLiteral("m%1").arg(number)),
                 "an acknowledged upload is lost");
}

QTEST_GUILESS_MAIN(tst_serverTroubles)
#include "tst_serverTroubles.moc"
