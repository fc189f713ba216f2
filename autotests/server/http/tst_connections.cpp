// SPDX-License-Identifier: GPL-3.0-or-later

// The real server and clients that mean well, each in its own way.

#include "support/serverProcess.h"
#include "support/uploads.h"

#include <QRegularExpression>
#include <QtTest>

#include <memory>

#include <sys/socket.h>

namespace
{

QByteArray asked(const QByteArray &fields, const QByteArray &line = "GET /health HTTP/1.1\r\n")
{
    return line + fields + "\r\n";
}

QByteArray versionRequest(const QByteArray &target = "/php/Fennick/mcp.php")
{
    return "POST " + target + " HTTP/1.1\r\nHost: x\r\nContent-Length: "
           + QByteArray::number(askVersion.size()) + "\r\n\r\n" + askVersion;
}

} // namespace

class tst_connections : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void staysOpen_data();
    void staysOpen();
    void closesWhereAskedTo_data();
    void closesWhereAskedTo();
    void answeredInTheirOrder();
    void byteByByte();
    void targets_data();
    void targets();
    void contentTypes_data();
    void contentTypes();
    void headHasNoBody();
    void fieldsOfAnAnswer();
    void continueIsSaidOnceAndOnlyWhereAsked();
    void bodyThatDoesNotWait();
    void answerIsReadBeforeTheEnd();
    void halfClosed();
    void onlyTheLastProxyIsBelieved();

private:
    QTemporaryDir directory;
    std::unique_ptr<serverProcess> server;
};

void tst_connections::initTestCase()
{
    server = std::make_unique<serverProcess>(
        QStringLiteral("sqlite:") + directory.filePath(QStringLiteral("x.db")),
        QStringList{QStringLiteral("--read-limit"), QStringLiteral("0/1")});
    QVERIFY(server->isListening());
}

void tst_connections::staysOpen_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("form") << versionRequest();
    QTest::newRow("page") << asked("Host: x\r\n");
    QTest::newRow("asked to") << asked("Host: x\r\nConnection: keep-alive\r\n");
    QTest::newRow("page with an empty body") << asked("Host: x\r\nContent-Length: 0\r\n");
    QTest::newRow("form that makes no sense")
        << QByteArray("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: "
                      "3\r\n\r\n%%%");
    QTest::newRow("another protocol offered")
        << asked("Host: x\r\nConnection: Upgrade, HTTP2-Settings\r\nUpgrade: h2c\r\n");
}

void tst_connections::staysOpen()
{
    QFETCH(QByteArray, request);
    rawClient client(server->port);
    for (int i = 0; i < 3; ++i) {
        client.send(request);
        const QByteArray answered = client.response();
        QVERIFY(statusOf(answered) == 200 || statusOf(answered) == 400);
        QVERIFY(!answered.contains("Connection: close"));
    }
}

void tst_connections::closesWhereAskedTo_data()
{
    QTest::addColumn<QByteArray>("request");
    QTest::newRow("close") << asked("Host: x\r\nConnection: close\r\n");
    QTest::newRow("Close") << asked("Host: x\r\nConnection: Close\r\n");
    QTest::newRow("CLOSE") << asked("Host: x\r\ncOnNeCtIoN: CLOSE\r\n");
    QTest::newRow("among others") << asked("Host: x\r\nConnection: x-other, close\r\n");
    QTest::newRow("HTTP/1.0") << asked("", "GET /health HTTP/1.0\r\n");
    QTest::newRow("HTTP/1.0 that would stay")
        << asked("Connection: keep-alive\r\n", "GET /health HTTP/1.0\r\n");
}

void tst_connections::closesWhereAskedTo()
{
    QFETCH(QByteArray, request);
    rawClient client(server->port);
    client.send(request);
    QVERIFY(client.socket.waitForDisconnected(20'000));
    const QByteArray answered = client.socket.readAll();
    QCOMPARE(statusOf(answered), 200);
    QVERIFY(answered.contains("\r\nConnection: close\r\n"));
}

void tst_connections::answeredInTheirOrder()
{
    rawClient client(server->port);
    QByteArray bytes;
    for (int i = 0; i < 50; ++i)
        bytes += versionRequest() + asked("Host: x\r\n");
    client.send(bytes + asked("Host: x\r\nConnection: close\r\n"));
    QVERIFY(client.socket.waitForDisconnected(20'000));
    const QByteArray answers = client.socket.readAll();
    QCOMPARE(answers.count("HTTP/1.1 200 OK"), 101);
    QCOMPARE(answers.count("\r\n\r\n1010HTTP/1.1"), 50);
    QCOMPARE(answers.count("\r\n\r\nok\n"), 51);
}

void tst_connections::byteByByte()
{
    rawClient client(server->port);
    const QByteArray request = versionRequest();
    for (const char byte : request) {
        client.send(QByteArray(1, byte));
        client.socket.waitForBytesWritten(1'000);
    }
    QCOMPARE(bodyOf(client.response()), QByteArray("1010"));
}

void tst_connections::targets_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::newRow("path") << QByteArray("/php/Fennick/mcp.php");
    QTest::newRow("query") << QByteArray("/php/Fennick/mcp.php?x=y");
    QTest::newRow("whole URL") << QByteArray("http://localhost:8426/php/Fennick/mcp.php");
    QTest::newRow("whole URL, capitals") << QByteArray("HTTP://x/php/Fennick/mcp.php");
}

void tst_connections::targets()
{
    QFETCH(QByteArray, target);
    rawClient client(server->port);
    client.send(versionRequest(target));
    QCOMPARE(bodyOf(client.response()), QByteArray("1010"));
}

void tst_connections::contentTypes_data()
{
    QTest::addColumn<QByteArray>("field");
    QTest::newRow("none") << QByteArray();
    QTest::newRow("form") << QByteArray("Content-Type: application/x-www-form-urlencoded\r\n");
    QTest::newRow("capitals") << QByteArray("Content-Type: Application/X-WWW-Form-urlencoded\r\n");
    QTest::newRow("with a character set")
        << QByteArray("Content-Type: application/x-www-form-urlencoded; charset=UTF-8\r\n");
}

void tst_connections::contentTypes()
{
    QFETCH(QByteArray, field);
    rawClient client(server->port);
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\n" + field + "Content-Length: "
                + QByteArray::number(askVersion.size()) + "\r\n\r\n" + askVersion);
    QCOMPARE(bodyOf(client.response()), QByteArray("1010"));
}

void tst_connections::headHasNoBody()
{
    rawClient client(server->port);
    client.send(asked("Host: x\r\n", "HEAD /health HTTP/1.1\r\n") + versionRequest());
    QByteArray answers;
    while (!answers.endsWith("1010") && client.socket.waitForReadyRead(20'000))
        answers += client.socket.readAll();
    QVERIFY(answers.startsWith("HTTP/1.1 200 OK\r\n"));
    const int end = answers.indexOf("\r\n\r\n");
    QVERIFY(answers.left(end + 2).contains("\r\nContent-Length: 3\r\n"));
    QCOMPARE(answers.mid(end + 4, 8), QByteArray("HTTP/1.1"));
}

/// They promise nothing that is not so.
void tst_connections::fieldsOfAnAnswer()
{
    rawClient client(server->port);
    client.send(versionRequest());
    const QByteArray answered = client.response();
    static const QRegularExpression expected(
        QStringLiteral("^HTTP/1\\.1 200 OK\r\nDate: [A-Z][a-z]{2}, \\d{2} [A-Z][a-z]{2} \\d{4} "
                       "\\d{2}:\\d{2}:\\d{2} GMT\r\nContent-Type: text/plain; charset=utf-8\r\n"
                       "Content-Length: 4\r\n\r\n1010$"));
    QVERIFY2(expected.match(QString::fromLatin1(answered)).hasMatch(), answered.constData());
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nContent-Length: 29\r\n\r\n"
                "app=Fennick&type=getReference");
    QVERIFY(client.response().contains("\r\nContent-Type: application/octet-stream\r\n"));
}

void tst_connections::continueIsSaidOnceAndOnlyWhereAsked()
{
    rawClient client(server->port);
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nExpect: 100-Continue\r\n"
                "Content-Length: "
                + QByteArray::number(askVersion.size()) + "\r\n\r\n");
    QVERIFY(client.socket.waitForReadyRead(20'000));
    QCOMPARE(client.socket.readAll(), QByteArray("HTTP/1.1 100 Continue\r\n\r\n"));
    client.send(askVersion);
    QCOMPARE(statusOf(client.response()), 200);
}

void tst_connections::bodyThatDoesNotWait()
{
    rawClient client(server->port);
    client.send("POST /php/Fennick/mcp.php HTTP/1.1\r\nHost: x\r\nExpect: 100-continue\r\n"
                "Content-Length: "
                + QByteArray::number(askVersion.size()) + "\r\n\r\n" + askVersion);
    QCOMPARE(statusOf(client.response()), 200);
}

/// Of a request that is refused, all may have been sent before the answer is read.
void tst_connections::answerIsReadBeforeTheEnd()
{
    rawClient client(server->port);
    client.send("POST /other HTTP/1.1\r\nHost: x\r\nContent-Length: 500000\r\n\r\n"
                + QByteArray(500'000, 'x'));
    QVERIFY(client.socket.waitForDisconnected(20'000));
    QCOMPARE(statusOf(client.socket.readAll()), 404);
    QCOMPARE(client.socket.error(), QAbstractSocket::RemoteHostClosedError);
}

void tst_connections::halfClosed()
{
    rawClient client(server->port);
    client.send(versionRequest());
    // Says that nothing follows, and waits for the answer.
    ::shutdown(static_cast<int>(client.socket.socketDescriptor()), SHUT_WR);
    QCOMPARE(bodyOf(client.response()), QByteArray("1010"));
    QVERIFY(client.timeToClose(20'000) >= 0);
}

void tst_connections::onlyTheLastProxyIsBelieved()
{
    const serverProcess behind(QStringLiteral("sqlite:")
                                   + directory.filePath(QStringLiteral("y.db")),
                               {QStringLiteral("--upload-limit"), QStringLiteral("1/600"),
                                QStringLiteral("--trusted-proxy"), QStringLiteral("10.0.0.0/8"),
                                QStringLiteral("--trusted-proxy"), QStringLiteral("127.0.0.0/8")});
    const auto status = [&behind](const QByteArray &fields) {
        return statusOf(rawClient(behind.port).post(uploadForm(uploadXml("a", "b", "1")), fields));
    };
    QCOMPARE(status("X-Forwarded-For: 10.0.0.1\r\n"), 200);
    QCOMPARE(status("X-Forwarded-For: 10.0.0.2\r\n"), 200);
    QCOMPARE(status("X-Forwarded-For: 10.9.9.9, 10.0.0.1\r\n"), 429);
    QCOMPARE(status("X-Forwarded-For: 10.9.9.9\r\nX-Forwarded-For: 10.0.0.1\r\n"), 429);
    QCOMPARE(status("X-Forwarded-For: 10.0.0.1\r\nX-Forwarded-For: 10.0.0.3\r\n"), 200);
    // One customer of IPv6 has a whole network.
    QCOMPARE(status("X-Forwarded-For: 2001:db8::1\r\n"), 200);
    QCOMPARE(status("X-Forwarded-For: 2001:db8::ffff\r\n"), 429);
    // Whatever is no address is the proxy's own.
    QCOMPARE(status("X-Forwarded-For: " + QByteArray(8'000, 'a') + "\r\n"), 200);
    QCOMPARE(status("X-Forwarded-For: " + QByteArray(8'000, 'b') + "\r\n"), 429);
}

QTEST_GUILESS_MAIN(tst_connections)
#include "tst_connections.moc"
