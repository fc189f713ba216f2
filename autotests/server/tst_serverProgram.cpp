// SPDX-License-Identifier: GPL-3.0-or-later

// The real server in a process of its own.

#include "data/benchXml.h"
#include "data/httpDatabase.h"

#include "support/postgresServer.h"
#include "support/serverProcess.h"
#include "support/uploads.h"

#include <QtTest>

#include <csignal>
#include <memory>
#include <thread>
#include <vector>

class tst_serverProgram : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { postgres.reset(); }

    void fourActions();
    void otherRequests_data();
    void otherRequests();
    void tooLarge();
    void rangesAreNotServed();
    void uploadAnswers();
    void uploadLimit();
    void uploadLimitBehindAProxy();
    void publishedListIsServed();
    void nastyNamesArrive();
    void commands();
    void portInUse();
    void databaseThatCannotBeOpened();
    void wrongArguments();
    void keepsConnections();
    void endsOnSignals_data();
    void endsOnSignals();
    void finishesWhatIsInFlight();
    void silentClients();
    void drippingClient();
    void manySlowClients();
    void twoProcessesOnOneDatabase();
    void healthWithoutADatabase();
    void killedUnderLoad_data();
    void killedUnderLoad();
    void logsHoldNoNames();

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

const QByteArray askVersion = "?app=Fennick&type=getReferenceVersion";

/// Uploads to the server without a limit per address.
const QStringList noLimit = {QStringLiteral("--upload-limit"), QStringLiteral("0/1")};

int listed(const QString &database)
{
    const auto result =
        serverProcess::run({QStringLiteral("list"), QStringLiteral("--database"), database});
    return result.code == 0 ? result.out.count(QLatin1Char('\n')) - 1 : -1;
}

/// Uploads one result after the other until the server is gone; the numbers of those that were
/// acknowledged.
std::vector<int> uploadUntilKilled(quint16 port, int from)
{
    std::vector<int> acknowledged;
    rawClient client(port);
    for (int i = from; client.socket.state() == QAbstractSocket::ConnectedState; ++i) {
        const QByteArray xml =
            uploadXml("m" + QByteArray::number(i), "cpu", QByteArray::number(1 + i % 900));
        if (statusOf(client.post(uploadForm(xml))) == 200)
            acknowledged.push_back(i);
    }
    return acknowledged;
}

} // namespace

void tst_serverProgram::initTestCase()
{
    postgres = std::make_unique<postgresServer>();
    QVERIFY2(postgres->lastOutput.isEmpty(), qPrintable(postgres->lastOutput));
}

void tst_serverProgram::fourActions()
{
    const serverProcess server(sqlite());
    QVERIFY(server.isListening());
    QCOMPARE(server.output, "Listening on " + server.host().toLatin1() + "\n");
    httpDatabase database(server.host());
    QByteArray data;
    QVERIFY(database.request(httpDatabase::referenceVersion, data));
    QCOMPARE(data, QByteArray("1010"));
    QByteArray builtIn;
    QVERIFY(database.request(httpDatabase::reference, builtIn));
    QVERIFY(!readMachines(builtIn).isEmpty());
    QVERIFY(database.request(httpDatabase::betaReference, data));
    QCOMPARE(data, builtIn);
    data = uploadXml("LAB7", "Some CPU", "12.5");
    QVERIFY(database.request(httpDatabase::storeResults, data));
    data.clear(); // what a program without results sends
    QVERIFY(!database.request(httpDatabase::storeResults, data));
}

void tst_serverProgram::otherRequests_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<int>("status");
    QTest::newRow("question mark") << askVersion << 200;
    QTest::newRow("no question mark") << askVersion.mid(1) << 200;
    QTest::newRow("empty") << QByteArray() << 400;
    QTest::newRow("other app") << QByteArray("app=Other&type=getReferenceVersion") << 400;
    QTest::newRow("no app") << QByteArray("type=getReferenceVersion") << 400;
    QTest::newRow("no type") << QByteArray("app=Fennick") << 400;
    QTest::newRow("other type") << QByteArray("app=Fennick&type=dropTables") << 400;
    QTest::newRow("no form") << QByteArray("%%%") << 400;
    QTest::newRow("NUL") << QByteArray(100, '\0') << 400;
}

void tst_serverProgram::otherRequests()
{
    static const serverProcess server(sqlite());
    rawClient client(server.port);
    QFETCH(QByteArray, body);
    const QByteArray response = client.post(body);
    QTEST(statusOf(response), "status");
    QVERIFY(!bodyOf(response).isEmpty());
}

void tst_serverProgram::tooLarge()
{
    const serverProcess server(sqlite());
    const QByteArray form = "app=Fennick&type=getReferenceVersion&x=";
    const auto padded = [&form](int size) { return form + QByteArray(size - form.size(), 'x'); };
    QCOMPARE(statusOf(rawClient(server.port).post(padded(65536))), 200);
    QCOMPARE(statusOf(rawClient(server.port).post(padded(65537))), 413);
    // Refused for what it announces, before any of it is sent.
    rawClient announcing(server.port);
    announcing.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                    "999999999999\r\n\r\n");
    QCOMPARE(statusOf(announcing.response()), 413);
    QVERIFY(announcing.timeToClose(5'000) >= 0);
    for (const char *head : {"Transfer-Encoding: chunked", "Content-Length: -5",
                             "Content-Length: 99999999999999999999999"}) {
        rawClient client(server.port);
        client.send(QByteArray("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\n") + head
                    + "\r\n\r\n");
        QVERIFY2(statusOf(client.response()) >= 400, head);
    }
    rawClient elsewhere(server.port);
    elsewhere.send("POST /other HTTP/1.1\r\nHost: x\r\nContent-Length: 999999\r\n\r\n");
    QCOMPARE(statusOf(elsewhere.response()), 413);
    // A head without an end is broken off.
    rawClient endless(server.port);
    endless.send("GET / HTTP/1.1\r\n");
    for (int i = 0; i < 100; ++i)
        endless.send("X-" + QByteArray::number(i) + ": " + QByteArray(1'000, 'x') + "\r\n");
    QVERIFY(endless.timeToClose(5'000) >= 0);
    QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 200);
}

void tst_serverProgram::rangesAreNotServed()
{
    const serverProcess server(sqlite());
    rawClient client(server.port);
    const QByteArray form = "app=Fennick&type=getReference";
    const QByteArray whole = client.post(form);
    const QByteArray ranges = "Range: bytes=" + QByteArray("0-,").repeated(1'000) + "0-\r\n";
    const QByteArray response = client.post(form, ranges);
    QCOMPARE(statusOf(response), 200);
    QCOMPARE(bodyOf(response), bodyOf(whole));
}

void tst_serverProgram::uploadAnswers()
{
    const QString database = sqlite();
    const serverProcess server(database);
    const auto answerTo = [&server](const QByteArray &xml) {
        return rawClient(server.port).post(uploadForm(xml));
    };
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "1"))), 200);
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "1"))), 200);
    QCOMPARE(statusOf(answerTo(uploadXml("a", "b", "0"))), 200);
    QCOMPARE(statusOf(answerTo("no XML")), 400);
    const QByteArray refused = answerTo(uploadXml("a", "b", "-1"));
    QCOMPARE(statusOf(refused), 422);
    QCOMPARE(bodyOf(refused),
             QByteArray("the result of 'mandel' must be at least 0 and below 1000\n"));
    QCOMPARE(listed(database), 2);
}

void tst_serverProgram::uploadLimit()
{
    const serverProcess server(sqlite(),
                               {QStringLiteral("--upload-limit"), QStringLiteral("2/60")});
    const QByteArray body = uploadForm(uploadXml("a", "b", "1"));
    rawClient client(server.port);
    QCOMPARE(statusOf(client.post(body)), 200);
    QCOMPARE(statusOf(client.post(body)), 200);
    QCOMPARE(statusOf(client.post(body)), 429);
    // What a client says of itself changes nothing, and only uploads are limited.
    QCOMPARE(statusOf(client.post(body, "X-Forwarded-For: 10.0.0.1\r\n")), 429);
    QCOMPARE(statusOf(client.post(askVersion)), 200);
}

void tst_serverProgram::uploadLimitBehindAProxy()
{
    const serverProcess server(sqlite(), {QStringLiteral("--upload-limit"), QStringLiteral("1/60"),
                                          QStringLiteral("--behind-proxy")});
    const QByteArray body = uploadForm(uploadXml("a", "b", "1"));
    rawClient client(server.port);
    QCOMPARE(statusOf(client.post(body, "X-Forwarded-For: 10.0.0.1\r\n")), 200);
    QCOMPARE(statusOf(client.post(body, "X-Forwarded-For: 10.0.0.2\r\n")), 200);
    QCOMPARE(statusOf(client.post(body, "X-Forwarded-For: 10.9.9.9, 10.0.0.1\r\n")), 429);
}

void tst_serverProgram::publishedListIsServed()
{
    const QString database = sqlite();
    const serverProcess server(database);
    for (const char *result : {"10", "30", "20"})
        QCOMPARE(
            statusOf(rawClient(server.port).post(uploadForm(uploadXml("x", "New CPU", result)))),
            200);
    const auto published =
        serverProcess::run({QStringLiteral("publish"), QStringLiteral("--database"), database});
    QCOMPARE(published.code, 0);
    QCOMPARE(published.out, QStringLiteral("Published version 1011 from 3 uploads\n"));
    httpDatabase client(server.host());
    QByteArray data;
    QVERIFY(client.request(httpDatabase::referenceVersion, data));
    QCOMPARE(data, QByteArray("1011"));
    QVERIFY(client.request(httpDatabase::reference, data));
    const benchResults newest = readMachines(data).last();
    QCOMPARE(newest.getName(), QStringLiteral("New CPU"));
    QCOMPARE(newest.getTests().value(QStringLiteral("mandel")).value, 20.0F);
    QVERIFY(data.size() > 0 && !data.contains("machineName=\"x\""));
}

void tst_serverProgram::nastyNamesArrive()
{
    const QString database = sqlite();
    const serverProcess server(database);
    const QString name =
        QString::fromUtf8("a+b%41 &amp; \"c\" 'd' <\xC3\x9C\xE4\xB8\xAD> %zz;/?#=");
    QByteArray xml = "<F>" + stored(machineWith(name, name, 1)).content + "</F>";
    httpDatabase client(server.host());
    QVERIFY(client.request(httpDatabase::storeResults, xml));
    const auto exported =
        serverProcess::run({QStringLiteral("export"), QStringLiteral("--database"), database});
    const QVector<benchResults> machines = readMachines(exported.out.toUtf8());
    QCOMPARE(machines.size(), 1);
    QCOMPARE(machines.first().getName(), name);
    QCOMPARE(machines.first().getCpu(), name);
    // A name of two lines is refused with a reason, and not cut.
    QCOMPARE(statusOf(rawClient(server.port).post(uploadForm(uploadXml("a&#10;b", "c", "1")))),
             422);
}

void tst_serverProgram::commands()
{
    const QString database = sqlite();
    const auto run = [&database](QStringList arguments) {
        return serverProcess::run(arguments << QStringLiteral("--database") << database);
    };
    const QString list = directory.filePath(QStringLiteral("list.xml"));
    QFile file(list);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(uploadXml("PRIVATE", "My CPU", "5"));
    file.close();
    QCOMPARE(run({QStringLiteral("import"), list}).out,
             QStringLiteral("Read 1 uploads and 0 lists, passed over 0 modelled machines\n"));
    const QString table = run({QStringLiteral("list")}).out;
    QVERIFY2(table.contains(QStringLiteral("received   My CPU, linux, 4, 1\n")), qPrintable(table));
    QVERIFY(!table.contains(QStringLiteral("PRIVATE")));
    const auto missing = run({QStringLiteral("withdraw"), QStringLiteral("99"),
                              QStringLiteral("--why"), QStringLiteral("x")});
    QCOMPARE(missing.code, 1);
    QCOMPARE(missing.err, QStringLiteral("fennick-server: there is no upload 99\n"));
    QCOMPARE(run({QStringLiteral("withdraw"), QStringLiteral("1"), QStringLiteral("--why"),
                  QStringLiteral("a typo")})
                 .code,
             0);
    QVERIFY(run({QStringLiteral("list")})
                .out.contains(QStringLiteral("withdrawn  My CPU, linux, 4, 1 (a typo)\n")));
    QVERIFY(run({QStringLiteral("export")}).out.contains(QStringLiteral("reason=\"a typo\"")));
    const auto noFile = run({QStringLiteral("import"), list + QStringLiteral(".none")});
    QCOMPARE(noFile.code, 1);
    QVERIFY(noFile.err.contains(QStringLiteral("cannot be read: No such file")));
    QVERIFY(
        serverProcess::run({QStringLiteral("--help")}).out.contains(QStringLiteral("withdraw ID")));
    QCOMPARE(serverProcess::run({QStringLiteral("--version")}).code, 0);
}

void tst_serverProgram::portInUse()
{
    const serverProcess server(sqlite());
    const auto second = serverProcess::run({QStringLiteral("serve"), QStringLiteral("--listen"),
                                            server.host(), QStringLiteral("--database"), sqlite()});
    QCOMPARE(second.code, 1);
    QCOMPARE(second.err, QStringLiteral("fennick-server: cannot listen on %1; is something else "
                                        "listening there?\n")
                             .arg(server.host()));
}

void tst_serverProgram::databaseThatCannotBeOpened()
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

void tst_serverProgram::wrongArguments()
{
    const auto result = serverProcess::run({QStringLiteral("sevre")});
    QCOMPARE(result.code, 2);
    QVERIFY(result.err.startsWith(QStringLiteral("fennick-server: there is no command 'sevre'")));
}

void tst_serverProgram::keepsConnections()
{
    const serverProcess server(sqlite());
    rawClient client(server.port);
    for (int i = 0; i < 20; ++i)
        QCOMPARE(bodyOf(client.post(askVersion)), QByteArray("1010"));
    client.send("GET /health HTTP/1.1\r\nHost: x\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 200);
    client.send("GET /nothing HTTP/1.1\r\nHost: x\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 404);
    client.send("HELLO\r\n\r\n");
    QCOMPARE(statusOf(client.response()), 400);
}

void tst_serverProgram::endsOnSignals_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void tst_serverProgram::endsOnSignals()
{
    QFETCH(int, number);
    serverProcess server(sqlite());
    const rawClient idle(server.port); // does not hold it up
    kill(static_cast<pid_t>(server.process.processId()), number);
    QVERIFY(server.process.waitForFinished(5'000));
    QCOMPARE(server.process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(server.process.exitCode(), 0);
}

void tst_serverProgram::finishesWhatIsInFlight()
{
    const QString database = sqlite();
    serverProcess server(database);
    rawClient client(server.port);
    const QByteArray body = uploadForm(uploadXml("a", "b", "1"));
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                + QByteArray::number(body.size()) + "\r\n\r\n" + body.left(20));
    QTest::qWait(300);
    server.process.terminate();
    QTest::qWait(300);
    client.send(body.mid(20));
    QCOMPARE(statusOf(client.response()), 200);
    QVERIFY(server.process.waitForFinished(15'000));
    QCOMPARE(server.process.exitCode(), 0);
    QCOMPARE(listed(database), 1);
}

void tst_serverProgram::silentClients()
{
    const serverProcess server(sqlite());
    rawClient silent(server.port);
    rawClient half(server.port);
    half.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nContent-Length: 100\r\n\r\napp=");
    QCOMPARE(statusOf(rawClient(server.port).post(askVersion)), 200);
    QVERIFY(silent.timeToClose(14'000) >= 0);
    QVERIFY(half.timeToClose(4'000) >= 0);
}

void tst_serverProgram::drippingClient()
{
    const serverProcess server(sqlite());
    rawClient dripping(server.port);
    dripping.send("GET /health HTTP/1.1\r\nX: ");
    QElapsedTimer timer;
    timer.start();
    while (dripping.socket.state() == QAbstractSocket::ConnectedState && timer.elapsed() < 20'000) {
        dripping.send("x");
        dripping.socket.waitForReadyRead(200);
        dripping.socket.readAll();
    }
    // It is not the pauses that count, but the whole.
    QVERIFY(timer.elapsed() >= 8'000);
    QVERIFY(timer.elapsed() < 15'000);
}

void tst_serverProgram::manySlowClients()
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

void tst_serverProgram::twoProcessesOnOneDatabase()
{
    const QString database = postgres->newDatabase();
    const serverProcess first(database);
    const serverProcess second(database);
    QVERIFY(first.isListening() && second.isListening());
    for (int i = 1; i <= 3; ++i) {
        const quint16 port = i % 2 == 0 ? first.port : second.port;
        QCOMPARE(statusOf(rawClient(port).post(
                     uploadForm(uploadXml("x", "Shared CPU", QByteArray::number(i))))),
                 200);
    }
    // The same upload at the other one is still one.
    QCOMPARE(statusOf(rawClient(first.port).post(uploadForm(uploadXml("x", "Shared CPU", "3")))),
             200);
    QCOMPARE(listed(database), 3);
    QCOMPARE(serverProcess::run({QStringLiteral("publish"), QStringLiteral("--database"), database})
                 .code,
             0);
    QByteArray lists[2];
    for (const serverProcess *server : {&first, &second}) {
        httpDatabase client(server->host());
        QByteArray version;
        QVERIFY(client.request(httpDatabase::referenceVersion, version));
        QCOMPARE(version, QByteArray("1011"));
        QVERIFY(client.request(httpDatabase::reference, lists[server == &first ? 0 : 1]));
    }
    QCOMPARE(lists[0], lists[1]);
    QVERIFY(lists[0].contains("Shared CPU"));
}

void tst_serverProgram::healthWithoutADatabase()
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

void tst_serverProgram::killedUnderLoad_data()
{
    QTest::addColumn<bool>("isSqlite");
    QTest::newRow("SQLite") << true;
    QTest::newRow("PostgreSQL") << false;
}

void tst_serverProgram::killedUnderLoad()
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
        for (int client = 0; client < clients; ++client) {
            threads.emplace_back([&, client] {
                perClient[static_cast<std::size_t>(client)] =
                    uploadUntilKilled(server.port, (round * clients + client) * 1'000'000);
            });
        }
        QTest::qSleep(300 + 97 * round);
        kill(static_cast<pid_t>(server.process.processId()), SIGKILL);
        for (std::thread &thread : threads)
            thread.join();
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

void tst_serverProgram::logsHoldNoNames()
{
    serverProcess server(sqlite());
    rawClient client(server.port);
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "1")));
    client.post(uploadForm(uploadXml("SECRETNAME", "SECRETCPU", "-1")));
    QCOMPARE(server.terminate(), 0);
    const QByteArray log = server.process.readAllStandardError();
    QVERIFY(log.contains("upload refused"));
    QVERIFY(!log.contains("SECRET"));
    QVERIFY(!log.contains("127.0.0.1"));
}

QTEST_GUILESS_MAIN(tst_serverProgram)
#include "tst_serverProgram.moc"
