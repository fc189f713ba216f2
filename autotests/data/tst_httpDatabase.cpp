// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "data/benchXml.h"
#include "data/formDecoder.h"
#include "data/zlibStream.h"
#include "support/fakeServer.h"
#include "support/peakMemory.h"

#include <QElapsedTimer>
#include <QtTest>

namespace
{

constexpr int shortTime = 200;
/// For what must end by itself, long before.
constexpr int longTime = 60'000;

const QByteArray list = "<Fennick><bench machineName=\"Online\"/></Fennick>";

constexpr int far = 200 * 1024 * 1024;

const QByteArray &farStream()
{
    static const QByteArray stream = longStream(far);
    return stream;
}

constexpr int allRequests[] = {onlineDatabase::referenceVersion, onlineDatabase::reference,
                               onlineDatabase::betaReference, onlineDatabase::storeResults};

/// What a request comes to, and how long it took.
struct outcome {
    bool ok = false;
    QByteArray data;
    qint64 ms = 0;
};

outcome ask(const fakeServer &server, int requested, int timeOut, const QByteArray &data = "in")
{
    httpDatabase database(server.host(), {timeOut, timeOut});
    outcome result;
    result.data = data;
    QElapsedTimer timer;
    timer.start();
    result.ok = database.request(requested, result.data);
    result.ms = timer.elapsed();
    return result;
}

} // namespace

Q_DECLARE_METATYPE(fakeServer::answer)

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
    void refused();
    void errors_data();
    void errors();
    void oddReplies_data();
    void oddReplies();
    void timeOuts_data();
    void timeOuts();
    void timeOutOfEachRequest();
    void standardTimeOuts();
    void lateReply();
    void notSentTwice_data();
    void notSentTwice();
    void redirects_data();
    void redirects();
    void badLists_data();
    void badLists();
    void longReplies_data();
    void longReplies();
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

void tst_httpDatabase::refused()
{
    fakeServer server;
    server.stop();
    for (const int requested : allRequests) {
        const outcome result = ask(server, requested, longTime);
        QVERIFY(!result.ok);
        QVERIFY(result.ms < longTime / 2);
    }
}

void tst_httpDatabase::errors_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    const auto row = [](const char *name, const fakeServer::answer &reply) {
        QTest::newRow(name) << reply;
    };
    row("404", sending(httpReply("1500", "404 Not Found")));
    row("500", sending(httpReply("1500", "500 Internal Server Error")));
    row("401", sending(httpReply("1500", "401 Unauthorized", "WWW-Authenticate: Basic\r\n")));
    row("closed at once", closingAfter({}));
    row("reset", [](QTcpSocket &socket) { socket.abort(); });
    row("closed in the header", closingAfter("HTTP/1.1 200 OK\r\nContent-Le"));
    row("closed in the body", closingAfter("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n1500"));
    row("not HTTP", closingAfter("1500\r\n\r\n"));
}

void tst_httpDatabase::errors()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    for (const int requested : allRequests) {
        const outcome result = ask(server, requested, longTime);
        QVERIFY(!result.ok);
        QVERIFY(result.ms < longTime / 2);
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

void tst_httpDatabase::timeOuts_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<QByteArray>("sent");
    QTest::addColumn<bool>("isSuccess");
    QTest::addColumn<QByteArray>("data");
    const QByteArray head = "HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n";
    const auto row = [](const char *name, int requested, const QByteArray &sent, bool isSuccess,
                        const QByteArray &data) {
        QTest::newRow(name) << requested << sent << isSuccess << data;
    };
    row("version, silent", 0, {}, false, {});
    row("reference, silent", 1, {}, false, {});
    row("beta, silent", 2, {}, false, {});
    // Nothing has failed so far, and nothing of the reply is wanted.
    row("store, silent", 3, {}, true, "in");
    row("version, half a header", 0, head.left(20), false, {});
    // What has come by then counts.
    row("version, half a body", 0, head + "15", true, "15");
    row("reference, half a body", 1, head + qCompress(list).left(30), false, {});
    row("store, half a body", 3, head + "x", true, "in");
}

void tst_httpDatabase::timeOuts()
{
    QFETCH(int, requested);
    QFETCH(QByteArray, sent);
    QFETCH(bool, isSuccess);
    QFETCH(QByteArray, data);
    const fakeServer server(sending(sent));
    // Long enough for what is sent to be there in time.
    const int timeOut = sent.isEmpty() ? shortTime : 5 * shortTime;
    const outcome result = ask(server, requested, timeOut);
    QCOMPARE(result.ok, isSuccess);
    if (isSuccess)
        QCOMPARE(result.data, data);
    QVERIFY(result.ms >= timeOut * 9 / 10); // a coarse timer may be early by a twentieth
}

void tst_httpDatabase::timeOutOfEachRequest()
{
    const fakeServer server;
    const auto ms = [&server](int requested, const httpDatabase::timeOuts &limits) {
        httpDatabase database(server.host(), limits);
        QElapsedTimer timer;
        timer.start();
        QByteArray data;
        database.request(requested, data);
        return timer.elapsed();
    };
    QVERIFY(ms(onlineDatabase::referenceVersion, {shortTime, longTime}) < longTime / 2);
    for (const int requested :
         {onlineDatabase::reference, onlineDatabase::betaReference, onlineDatabase::storeResults})
        QVERIFY(ms(requested, {longTime, shortTime}) < longTime / 2);
}

void tst_httpDatabase::standardTimeOuts()
{
    const httpDatabase::timeOuts standard;
    QCOMPARE(standard.version, 7000);
    QCOMPARE(standard.others, 30'000);
}

void tst_httpDatabase::lateReply()
{
    // A reply to a request that is over must not be taken for that to the next.
    QTcpSocket *late = nullptr;
    fakeServer server([&late](QTcpSocket &socket) { late = &socket; });
    httpDatabase database(server.host(), {longTime, shortTime});
    QByteArray data;
    QVERIFY(database.request(onlineDatabase::storeResults, data));
    QVERIFY(late);
    server.reply = [late](QTcpSocket &socket) {
        if (late->state() == QAbstractSocket::ConnectedState)
            late->write(httpReply("1"));
        QTimer::singleShot(shortTime, &socket, [&socket] { socket.write(httpReply("2")); });
    };
    QVERIFY(database.request(onlineDatabase::referenceVersion, data));
    QCOMPARE(data, QByteArray("2"));
}

void tst_httpDatabase::notSentTwice_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::newRow("closed") << closingAfter({});
    QTest::newRow("reset") << fakeServer::answer([](QTcpSocket &socket) { socket.abort(); });
    QTest::newRow("closed in the header") << closingAfter("HTTP/1.1 200 OK\r\nContent-Le");
    QTest::newRow("not HTTP") << closingAfter("1500\r\n\r\n");
}

void tst_httpDatabase::notSentTwice()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    QVERIFY(!ask(server, onlineDatabase::storeResults, longTime).ok);
    // Connections are served in their order: one more shows what has come before it.
    QVERIFY(!ask(server, onlineDatabase::referenceVersion, longTime).ok);
    QCOMPARE(server.requests.size(), 2);
    QVERIFY(server.lastBody().contains("getReferenceVersion"));
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

void tst_httpDatabase::badLists_data()
{
    QTest::addColumn<QByteArray>("reply");
    const QByteArray packed = qCompress(list);
    QTest::newRow("text") << list;
    QTest::newRow("length alone") << packed.left(4);
    QTest::newRow("cut") << packed.left(packed.size() - 3);
    QTest::newRow("packed nothing") << qCompress("");
    QTest::newRow("4 GB in front") << withLength(0xFFFFFFFFU, packed.mid(4));
    QTest::newRow("200 MB") << withLength(far, farStream());
    QTest::newRow("200 MB, lies") << withLength(100, farStream());
    QTest::newRow("one byte too long")
        << withLength(0, longStream(static_cast<qint64>(maximumXmlSize) + 1));
}

void tst_httpDatabase::badLists()
{
    QFETCH(QByteArray, reply);
    const fakeServer server(sending(httpReply(reply)));
    const peakMemory memory;
    QVERIFY(!ask(server, onlineDatabase::reference, longTime).ok);
    QVERIFY(!ask(server, onlineDatabase::betaReference, longTime).ok);
    if (memory.isAvailable())
        QVERIFY2(memory.growth() < (64 << 20), qPrintable(QString::number(memory.growth())));
}

void tst_httpDatabase::longReplies_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    const auto row = [](const char *name, const fakeServer::answer &reply) {
        QTest::newRow(name) << reply;
    };
    const QByteArray piece(64 * 1024, '1');
    row("endless", endless("HTTP/1.1 200 OK\r\n\r\n", piece));
    row("endless with a length",
        endless("HTTP/1.1 200 OK\r\nContent-Length: 99999999999\r\n\r\n", piece));
    row("too long", sending(httpReply(QByteArray(static_cast<int>(maximumXmlSize) + 1, '1'))));
}

void tst_httpDatabase::longReplies()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    const peakMemory memory;
    for (const int requested : allRequests) {
        const outcome result = ask(server, requested, longTime);
        QVERIFY(!result.ok);
        QVERIFY(result.ms < longTime / 2);
    }
    if (memory.isAvailable())
        QVERIFY2(memory.growth() < (256 << 20), qPrintable(QString::number(memory.growth())));
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
    QTest::addColumn<bool>("isHost");
    const auto rows = [](std::initializer_list<const char *> texts, bool isHost) {
        for (const char *text : texts)
            QTest::addRow("'%s'", text) << QString::fromUtf8(text) << isHost;
    };
    rows({"localhost", "localhost:8426", "a.example.org", "1.2.3.4:5", "[::1]:80",
          "Ä.example:65535"},
         true);
    rows({"", ":", ":80", "a:", "a:0", "a:65536", "a:b", "a/", "a/b", "a:1/b", "u@a", "u:p@a",
          "http://a", "a?b", "a#b", "a b", " a", "[::1"},
         false);
}

void tst_httpDatabase::hosts()
{
    QFETCH(QString, text);
    QTEST(httpDatabase::isHost(text), "isHost");
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
    QVERIFY(httpDatabase::isHost(httpDatabase::defaultHost()));
}

QTEST_GUILESS_MAIN(tst_httpDatabase)
#include "tst_httpDatabase.moc"
