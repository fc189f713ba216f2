// SPDX-License-Identifier: GPL-3.0-or-later

// The real server among crowds of clients that keep it busy, and databases that keep it waiting.

#include "storeFixture.h"
#include "support/serverProcess.h"

#include <QtTest>

#include <csignal>
#include <memory>
#include <utility>
#include <vector>

#include <sys/resource.h>

namespace
{

#ifdef __SANITIZE_THREAD__
constexpr bool isSlowedDown = true;
#else
constexpr bool isSlowedDown = false;
#endif

/// What a crowd does with a connection that it has opened.
struct crowd {
    const char *name;
    QByteArray first;
    bool drips;
};

QVector<crowd> crowds()
{
    const QByteArray head = "POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\n";
    const QByteArray list = head
                            + "Content-Length: 29\r\n\r\n"
                              "app=Fennick&type=getReference";
    return {
        {"says nothing", {}, false},
        {"half a line", "POST /p", false},
        {"drips a head", head, true},
        {"drips a body", head + "Content-Length: 60000\r\n\r\n", true},
        {"reads nothing", list.repeated(200), false},
        {"stays after a request", list, false},
        {"was refused", "HELLO\r\n\r\n", true},
    };
}

/// An address of loopback of its own for each number.
QHostAddress addressOf(quint32 number)
{
    return QHostAddress(0x7F000100U + number);
}

QString limit(int number)
{
    return QString::number(number);
}

} // namespace

class tst_serverFloods : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { postgres.reset(); }

    void crowdOfOneAddress_data();
    void crowdOfOneAddress();
    void crowdOfManyAddresses_data() { crowdOfOneAddress_data(); }
    void crowdOfManyAddresses();
    void proxiesAreNoCrowd();
    void moreThanTheUsualFiles();
    void allAtOnce();
    void databaseThatHangs_data();
    void databaseThatHangs();

private:
    QString sqlite()
    {
        return QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("%1.db").arg(++files));
    }

    QTemporaryDir directory;
    int files = 0;
    std::unique_ptr<postgresServer> postgres;
};

void tst_serverFloods::initTestCase()
{
    postgres = std::make_unique<postgresServer>();
    QVERIFY2(postgres->lastOutput.isEmpty(), qPrintable(postgres->lastOutput));
}

void tst_serverFloods::crowdOfOneAddress_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<bool>("drips");
    for (const crowd &kind : crowds())
        QTest::newRow(kind.name) << kind.first << kind.drips;
}

/// Others get their answers, and so does whoever shares the address.
void tst_serverFloods::crowdOfOneAddress()
{
    QFETCH(QByteArray, first);
    QFETCH(bool, drips);
    const serverProcess server(sqlite(), {QStringLiteral("--connections-per-address"), limit(10),
                                          QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    std::vector<std::unique_ptr<rawClient>> clients;
    for (int i = 0; i < 100; ++i) {
        clients.push_back(std::make_unique<rawClient>(server.port, addressOf(1)));
        clients.back()->send(first);
    }
    for (int i = 0; i < 5; ++i) {
        for (const auto &client : clients) {
            if (drips && client->socket.state() == QAbstractSocket::ConnectedState)
                client->send("x");
        }
        QCOMPARE(bodyOf(rawClient(server.port).post(askVersion)), QByteArray("1010"));
    }
    // Of its own, one gives way as soon as it is silent.
    QTRY_COMPARE(bodyOf(rawClient(server.port, addressOf(1)).post(askVersion)), QByteArray("1010"));
}

void tst_serverFloods::crowdOfManyAddresses()
{
    if (isSlowedDown)
        QSKIP("a crowd comes faster than a server with the thread sanitizer takes it");
    QFETCH(QByteArray, first);
    QFETCH(bool, drips);
    const serverProcess server(sqlite(), {QStringLiteral("--connections"), limit(40),
                                          QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    std::vector<std::unique_ptr<rawClient>> clients;
    for (quint32 i = 0; i < 200; ++i) {
        clients.push_back(std::make_unique<rawClient>(server.port, addressOf(i)));
        clients.back()->send(first);
    }
    for (int i = 0; i < 5; ++i) {
        for (const auto &client : clients) {
            if (drips && client->socket.state() == QAbstractSocket::ConnectedState)
                client->send("x");
        }
        QCOMPARE(bodyOf(rawClient(server.port).post(askVersion)), QByteArray("1010"));
    }
}

/// All of its clients come from a proxy's address.
void tst_serverFloods::proxiesAreNoCrowd()
{
    const serverProcess server(sqlite(),
                               {QStringLiteral("--connections-per-address"), limit(2),
                                QStringLiteral("--trusted-proxy"), QStringLiteral("127.0.0.1")});
    std::vector<std::unique_ptr<rawClient>> clients;
    clients.reserve(10);
    for (int i = 0; i < 10; ++i)
        clients.push_back(std::make_unique<rawClient>(server.port));
    for (const auto &client : clients)
        QCOMPARE(bodyOf(client->post(askVersion)), QByteArray("1010"));
}

/// Each connection is a file, of which a process usually may have a thousand.
void tst_serverFloods::moreThanTheUsualFiles()
{
    if (isSlowedDown)
        QSKIP("a server with the thread sanitizer answers too late");
    rlimit allowed{};
    getrlimit(RLIMIT_NOFILE, &allowed);
    if (allowed.rlim_max < 3'000)
        QSKIP("this system allows no more files");
    const rlim_t usual = std::exchange(allowed.rlim_cur, 1'024);
    setrlimit(RLIMIT_NOFILE, &allowed); // which the server inherits
    const serverProcess server(sqlite(), {QStringLiteral("--connections"), limit(1'200),
                                          QStringLiteral("--connections-per-address"), limit(1'200),
                                          QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    allowed.rlim_cur = 3'000;
    setrlimit(RLIMIT_NOFILE, &allowed);
    std::vector<std::unique_ptr<rawClient>> clients;
    clients.reserve(1'150);
    for (int i = 0; i < 1'150; ++i)
        clients.push_back(std::make_unique<rawClient>(server.port));
    int answered = 0;
    for (const auto &client : clients)
        answered += bodyOf(client->post(askVersion)) == "1010" ? 1 : 0;
    QCOMPARE(answered, 1'150);
    clients.clear();
    allowed.rlim_cur = usual;
    setrlimit(RLIMIT_NOFILE, &allowed);
}

/// Whoever comes while the server is busy waits, and is not turned away.
void tst_serverFloods::allAtOnce()
{
    const serverProcess server(sqlite());
    const auto id = static_cast<pid_t>(server.process.processId());
    kill(id, SIGSTOP);
    std::vector<std::unique_ptr<QTcpSocket>> clients;
    for (int i = 0; i < 50; ++i) {
        clients.push_back(std::make_unique<QTcpSocket>());
        clients.back()->connectToHost(QHostAddress::LocalHost, server.port);
    }
    int connected = 0;
    for (const auto &client : clients)
        connected += client->waitForConnected(500) ? 1 : 0;
    kill(id, SIGCONT);
    QCOMPARE(connected, 50);
}

void tst_serverFloods::databaseThatHangs_data()
{
    QTest::addColumn<bool>("isSqlite");
    QTest::newRow("locked") << true;
    QTest::newRow("silent") << false;
}

/// Everybody is told in time, before the programs give up, and the server ends when it is asked to.
void tst_serverFloods::databaseThatHangs()
{
    QFETCH(bool, isSqlite);
    const QString place = isSqlite ? sqlite() : postgres->newDatabase();
    serverProcess server(place);
    QVERIFY(server.isListening());
    const QByteArray upload = uploadForm(uploadXml("a", "b", "1"));
    QCOMPARE(statusOf(rawClient(server.port).post(upload)), 200);
    database other(*parseDatabaseAddress(place), databaseUse::operating);
    if (isSqlite) {
        QVERIFY(other.open());
        QVERIFY(lockUploads(other));
    } else {
        postgres->freeze();
    }
    rawClient uploading(server.port);
    rawClient asking(server.port);
    QElapsedTimer timer;
    timer.start();
    uploading.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                   + QByteArray::number(upload.size() - 1) + "\r\n\r\n" + upload.mid(1));
    // Where others write, lists can still be read.
    QCOMPARE(statusOf(asking.post(askVersion)), isSqlite ? 200 : 503);
    QCOMPARE(statusOf(uploading.response()), 503);
    QVERIFY2(timer.elapsed() < 7'000, qPrintable(QString::number(timer.elapsed())));
    timer.start();
    const int code = server.terminate();
    const qint64 ending = timer.elapsed();
    if (isSqlite)
        QVERIFY(other.change(QStringLiteral("ROLLBACK")));
    else
        postgres->thaw();
    QVERIFY(code == 0 || code == 1);
    QVERIFY2(ending < 10'000, qPrintable(QString::number(ending)));
    // What has been stored is one upload, whether its fate was known or not.
    QTRY_COMPARE(listed(place), 1);
}

QTEST_GUILESS_MAIN(tst_serverFloods)
#include "tst_serverFloods.moc"
