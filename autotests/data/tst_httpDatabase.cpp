// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "askDatabase.h"

#include <QtTest>

class tst_httpDatabase : public QObject
{
    Q_OBJECT

private slots:
    void wire_data();
    void wire();
    void unknownRequest_data();
    void unknownRequest();
    void replies();
    void severalRequests();
    void oddReplies_data();
    void oddReplies();
    void redirects_data();
    void redirects();
    void packedReply();
    void noProxy();
    void hosts_data();
    void hosts();
    void noHost();
    void defaultHost();
};

void tst_httpDatabase::wire_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("version") << 0 << QByteArray("?app=Fennick&type=getReferenceVersion");
    QTest::newRow("reference") << 1 << QByteArray("?app=Fennick&type=getReference");
    QTest::newRow("beta") << 2 << QByteArray("?app=Fennick&type=getReferenceBeta");
    QTest::newRow("store") << 3
                           << QByteArray("?app=Fennick&type=storeUserData&results=%3Ca%20b%3D%22"
                                         "%2B%22%2F%3E%0A");
}

void tst_httpDatabase::wire()
{
    QFETCH(int, requested);
    QFETCH(QByteArray, body);
    const fakeServer server(sending(httpReply("x")));
    ask(server, requested, longTime, "<a b=\"+\"/>\n");
    QCOMPARE(server.requests.size(), 1);
    QCOMPARE(server.lastBody(), body);
    const QList<QByteArray> headers = server.lastHeaders().split('\n');
    QCOMPARE(headers.first().trimmed(), QByteArray("POST /php/Fennick/mcp.php HTTP/1.1"));
    const auto has = [&headers](const QByteArray &line) { return headers.count(line + '\r'); };
    QCOMPARE(has("Host: " + server.host().toLatin1()), 1);
    QCOMPARE(has("Content-Type: application/x-www-form-urlencoded"), 1);
    QCOMPARE(has("Content-Length: " + QByteArray::number(body.size())), 1);
    QCOMPARE(has("Accept-Encoding: identity"), 1);
}

void tst_httpDatabase::unknownRequest_data()
{
    QTest::addColumn<int>("requested");
    for (const int requested : {-1, 4, 5, 1000})
        QTest::addRow("%d", requested) << requested;
}

void tst_httpDatabase::unknownRequest()
{
    QFETCH(int, requested);
    const fakeServer server(sending(httpReply("x")));
    QVERIFY(!ask(server, requested, longTime).ok);
    QCOMPARE(server.connections, 0);
}

void tst_httpDatabase::replies()
{
    const fakeServer version(sending(httpReply("1500\n")));
    QCOMPARE(ask(version, onlineDatabase::referenceVersion, longTime).data, QByteArray("1500\n"));
    const fakeServer packed(sending(httpReply(qCompress(list))));
    for (const int requested : {onlineDatabase::reference, onlineDatabase::betaReference}) {
        const outcome result = ask(packed, requested, longTime);
        QVERIFY(result.ok);
        QCOMPARE(result.data, list);
    }
    const fakeServer storing(sending(httpReply("whatever")));
    QVERIFY(ask(storing, onlineDatabase::storeResults, longTime).ok);
}

void tst_httpDatabase::severalRequests()
{
    int sent = 0;
    const fakeServer server(
        [&sent](QTcpSocket &socket) { socket.write(httpReply(QByteArray::number(++sent))); });
    httpDatabase database(server.host(), {longTime, longTime});
    for (int i = 1; i <= 3; ++i) {
        QByteArray data;
        QVERIFY(database.request(onlineDatabase::referenceVersion, data));
        QCOMPARE(data, QByteArray::number(i));
    }
}

void tst_httpDatabase::oddReplies_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::addColumn<bool>("isVersion");
    const auto row = [](const char *name, const fakeServer::answer &reply, bool isVersion) {
        QTest::newRow(name) << reply << isVersion;
    };
    row("empty", sending(httpReply("")), false);
    row("204", sending("HTTP/1.1 204 No Content\r\n\r\n"), false);
    row("not a number", sending(httpReply("<html>")), true);
    row("without a length", closingAfter("HTTP/1.0 200 OK\r\n\r\n1500"), true);
    row(
        "closed later",
        [](QTcpSocket &socket) {
            socket.write("HTTP/1.1 200 OK\r\n\r\n1500");
            QTimer::singleShot(shortTime / 4, &socket, &QTcpSocket::disconnectFromHost);
        },
        true);
    row("in pieces",
        sending("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n2\r\n15\r\n2\r\n00\r\n"
                "0\r\n\r\n"),
        true);
}

void tst_httpDatabase::oddReplies()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    QTEST(ask(server, onlineDatabase::referenceVersion, longTime).ok, "isVersion");
    QVERIFY(!ask(server, onlineDatabase::reference, longTime).ok);
    QVERIFY(ask(server, onlineDatabase::storeResults, longTime).ok);
}

void tst_httpDatabase::redirects_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char *status : {"301 Moved", "302 Found", "303 See Other", "307 Temporary Redirect",
                               "308 Permanent Redirect"})
        QTest::newRow(status) << QByteArray(status);
}

void tst_httpDatabase::redirects()
{
    QFETCH(QByteArray, status);
    const fakeServer target(sending(httpReply("2000")));
    const QByteArray location = "Location: http://" + target.host().toLatin1() + "/x\r\n";
    const fakeServer server(sending(httpReply("", status, location)));
    for (const int requested : {onlineDatabase::referenceVersion, onlineDatabase::reference,
                                onlineDatabase::betaReference})
        QVERIFY(!ask(server, requested, longTime).ok);
    ask(server, onlineDatabase::storeResults, longTime);
    // Connections are served in their order: one of our own shows what has come before it.
    QVERIFY(ask(target, onlineDatabase::referenceVersion, longTime).ok);
    QCOMPARE(target.connections, 1);
}

void tst_httpDatabase::packedReply()
{
    // The toolkit would unpack this by itself, whatever its size.
    const fakeServer server(sending(httpReply("1500", "200 OK", "Content-Encoding: deflate\r\n")));
    QCOMPARE(ask(server, onlineDatabase::referenceVersion, longTime).data, QByteArray("1500"));
}

void tst_httpDatabase::noProxy()
{
    const fakeServer proxy(sending(httpReply("2")));
    qputenv("http_proxy", "http://" + proxy.host().toLatin1());
    // An address for documents, where nobody is. No proxy is ever asked for one of this machine.
    httpDatabase database(QStringLiteral("192.0.2.1"), {5 * shortTime, longTime});
    QByteArray data;
    const bool ok = database.request(onlineDatabase::referenceVersion, data);
    qunsetenv("http_proxy");
    QVERIFY(!ok);
    QCOMPARE(proxy.connections, 0);
}

void tst_httpDatabase::hosts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("isServer");
    const auto rows = [](std::initializer_list<const char *> texts, bool isServer) {
        for (const char *text : texts)
            QTest::addRow("'%s'", text) << QString::fromUtf8(text) << isServer;
    };
    rows({"localhost", "localhost:8426", "a.example.org", "1.2.3.4:5", "[::1]:80",
          "Ä.example:65535", "https://a", "https://a.example:8443", "https://[::1]"},
         true);
    rows({"",
          ":",
          ":80",
          "a:",
          "a:0",
          "a:65536",
          "a:b",
          "a/",
          "a/b",
          "a:1/b",
          "u@a",
          "u:p@a",
          "http://a",
          "a?b",
          "a#b",
          "a b",
          " a",
          "[::1",
          "https://",
          "https://a/",
          "https://u@a",
          "https://a:0",
          "https://https://a",
          "HTTPS://a",
          "ftp://a"},
         false);
}

void tst_httpDatabase::hosts()
{
    QFETCH(QString, text);
    QTEST(httpDatabase::isServer(text), "isServer");
}

void tst_httpDatabase::noHost()
{
    httpDatabase database(QStringLiteral("a b:c"), {longTime, longTime});
    QByteArray data;
    QVERIFY(!database.request(onlineDatabase::referenceVersion, data));
}

void tst_httpDatabase::defaultHost()
{
    QCOMPARE(httpDatabase::defaultHost(), QStringLiteral(FENNICK_EXPECTED_RESULT_HOST));
    QVERIFY(httpDatabase::isServer(httpDatabase::defaultHost()));
}

QTEST_GUILESS_MAIN(tst_httpDatabase)
#include "tst_httpDatabase.moc"
