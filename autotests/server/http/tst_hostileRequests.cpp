// SPDX-License-Identifier: GPL-3.0-or-later

// The real server and whatever can come over a connection.

#include "hostileRequests.h"

#include "support/serverProcess.h"
#include "support/uploads.h"

#include <QtTest>

#include <memory>

class tst_hostileRequests : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanup();
    void cleanupTestCase();

    void refusedOnce_data();
    void refusedOnce();
    void cutAnywhere_data() { refusedOnce_data(); }
    void cutAnywhere();
    void allowedMethods();

private:
    /// All that comes until the server closes the connection; nothing if it does not.
    static QByteArray untilClosed(rawClient &client);

    QTemporaryDir directory;
    std::unique_ptr<serverProcess> server;
};

QByteArray tst_hostileRequests::untilClosed(rawClient &client)
{
    const bool isClosed = client.socket.state() == QAbstractSocket::UnconnectedState
                          || client.socket.waitForDisconnected(20'000);
    return isClosed ? client.socket.readAll() : QByteArray();
}

void tst_hostileRequests::initTestCase()
{
    server = std::make_unique<serverProcess>(
        QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("x.db")),
        QStringList{QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    QVERIFY(server->isListening());
}

/// Whatever came, honest requests are answered, and nothing has been stored.
void tst_hostileRequests::cleanup()
{
    QCOMPARE(bodyOf(rawClient(server->port).post(askVersion)), QByteArray("1010"));
}

void tst_hostileRequests::cleanupTestCase()
{
    QCOMPARE(server->terminate(), 0);
}

void tst_hostileRequests::refusedOnce_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("status");
    const QVector<hostileRequest> all = hostileRequests();
    QVERIFY(all.size() >= 60);
    for (const hostileRequest &request : all)
        QTest::newRow(request.name) << request.bytes << request.status;
}

void tst_hostileRequests::refusedOnce()
{
    QFETCH(QByteArray, bytes);
    rawClient client(server->port);
    // What follows may hold a whole request, which must not be answered.
    client.send(bytes + smuggled());
    const QByteArray answered = untilClosed(client);
    QTEST(statusOf(answered), "status");
    QCOMPARE(answered.count("HTTP/1.1 "), 1);
    QVERIFY(answered.contains("\r\nConnection: close\r\n"));
    QVERIFY2(bodyOf(answered).isEmpty() == bytes.startsWith("HEAD"), answered.constData());
}

/// The same status when it comes in small pieces, and no crash wherever it ends.
void tst_hostileRequests::cutAnywhere()
{
    QFETCH(QByteArray, bytes);
    const int head = qMax(4, bytes.indexOf("\r\n\r\n") + 4);
    for (const int cut : {1, head / 3, head / 2, head - 1, head}) {
        rawClient client(server->port);
        client.send(bytes.left(cut));
        client.socket.waitForReadyRead(1);
        client.send(bytes.mid(cut) + smuggled());
        const QByteArray answered = untilClosed(client);
        QTEST(statusOf(answered), "status");
        rawClient halved(server->port);
        halved.send(bytes.left(cut));
    }
}

void tst_hostileRequests::allowedMethods()
{
    rawClient form(server->port);
    form.send("GET /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\n\r\n");
    QVERIFY(untilClosed(form).contains("\r\nAllow: POST\r\n"));
    rawClient page(server->port);
    page.send("PUT /health HTTP/1.1\r\nHost: x\r\nContent-Length: 0\r\n\r\n");
    QVERIFY(untilClosed(page).contains("\r\nAllow: GET, HEAD\r\n"));
}

QTEST_GUILESS_MAIN(tst_hostileRequests)
#include "tst_hostileRequests.moc"
