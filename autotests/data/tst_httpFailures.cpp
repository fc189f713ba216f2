// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/httpDatabase.h"

#include "askDatabase.h"
#include "data/benchXml.h"
#include "support/peakMemory.h"
#include "zlibStream.h"

#include <QtTest>

namespace
{

constexpr int far = 200 * 1024 * 1024;

const QByteArray &farStream()
{
    static const QByteArray stream = longStream(far);
    return stream;
}

constexpr int allRequests[] = {onlineDatabase::referenceVersion, onlineDatabase::reference,
                               onlineDatabase::betaReference, onlineDatabase::storeResults};

} // namespace

class tst_httpFailures : public QObject
{
    Q_OBJECT

private slots:
    void refused();
    void errors_data();
    void errors();
    void refusals_data();
    void refusals();
    void refusalOfTheLatestRequest();
    void timeOuts_data();
    void timeOuts();
    void timeOutOfEachRequest();
    void standardTimeOuts();
    void lateReply();
    void notSentTwice_data();
    void notSentTwice();
    void badLists_data();
    void badLists();
    void longReplies_data();
    void longReplies();
};

void tst_httpFailures::refused()
{
    fakeServer server;
    server.stop();
    for (const int requested : allRequests) {
        const outcome result = ask(server, requested, longTime);
        QVERIFY(!result.ok);
        QVERIFY(result.ms < longTime / 2);
    }
}

void tst_httpFailures::errors_data()
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

void tst_httpFailures::errors()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    for (const int requested : allRequests) {
        const outcome result = ask(server, requested, longTime);
        QVERIFY(!result.ok);
        QVERIFY(result.ms < longTime / 2);
    }
}

void tst_httpFailures::refusals_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("words");
    const auto row = [](const char *name, const QByteArray &status, const QByteArray &type,
                        const QByteArray &body, const QString &words) {
        const QByteArray header = type.isEmpty() ? type : "Content-Type: " + type + "\r\n";
        QTest::newRow(name) << httpReply(body, status, header) << words;
    };
    const QByteArray error = "422 Unprocessable Content";
    const QByteArray plain = "text/plain; charset=utf-8";
    row("words", error, plain, "there is no test 'x'\n", QStringLiteral("there is no test 'x'"));
    row("not UTF-8 only", error, plain, "\xC3\x9C", QStringLiteral("\u00DC"));
    row("lines", error, plain, "one\r\ntwo\n", QStringLiteral("one two"));
    row("what a terminal would obey", error, plain, "a\x1B[2Jb\x07", QStringLiteral("a?[2Jb?"));
    row("many words", error, plain, QByteArray(5000, 'x'), QString(1000, QLatin1Char('x')));
    row("none", error, plain, "", {});
    row("a page", "404 Not Found", "text/html", "<html>", {});
    row("no type", error, {}, "words", {});
    row("taken", "200 OK", plain, "thank you\n", {});
}

void tst_httpFailures::refusals()
{
    QFETCH(QByteArray, reply);
    const fakeServer server(sending(reply));
    QTEST(ask(server, onlineDatabase::storeResults, longTime).refusal, "words");
}

void tst_httpFailures::refusalOfTheLatestRequest()
{
    fakeServer server(
        sending(httpReply("no", "422 Unprocessable Content", "Content-Type: text/plain\r\n")));
    httpDatabase database(server.host(), {longTime, longTime});
    QByteArray data;
    QVERIFY(!database.request(onlineDatabase::storeResults, data));
    QCOMPARE(database.refusal(), QStringLiteral("no"));
    server.reply = sending(httpReply("ok", "200 OK"));
    QVERIFY(database.request(onlineDatabase::storeResults, data));
    QCOMPARE(database.refusal(), QString());
}

void tst_httpFailures::timeOuts_data()
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

void tst_httpFailures::timeOuts()
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

void tst_httpFailures::timeOutOfEachRequest()
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

void tst_httpFailures::standardTimeOuts()
{
    const httpDatabase::timeOuts standard;
    QCOMPARE(standard.version, 7000);
    QCOMPARE(standard.others, 30'000);
}

void tst_httpFailures::lateReply()
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

void tst_httpFailures::notSentTwice_data()
{
    QTest::addColumn<fakeServer::answer>("reply");
    QTest::newRow("closed") << closingAfter({});
    QTest::newRow("reset") << fakeServer::answer([](QTcpSocket &socket) { socket.abort(); });
    QTest::newRow("closed in the header") << closingAfter("HTTP/1.1 200 OK\r\nContent-Le");
    QTest::newRow("not HTTP") << closingAfter("1500\r\n\r\n");
}

void tst_httpFailures::notSentTwice()
{
    QFETCH(fakeServer::answer, reply);
    const fakeServer server(reply);
    QVERIFY(!ask(server, onlineDatabase::storeResults, longTime).ok);
    // Connections are served in their order: one more shows what has come before it.
    QVERIFY(!ask(server, onlineDatabase::referenceVersion, longTime).ok);
    QCOMPARE(server.requests.size(), 2);
    QVERIFY(server.lastBody().contains("getReferenceVersion"));
}

void tst_httpFailures::badLists_data()
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

void tst_httpFailures::badLists()
{
    QFETCH(QByteArray, reply);
    const fakeServer server(sending(httpReply(reply)));
    const peakMemory memory;
    QVERIFY(!ask(server, onlineDatabase::reference, longTime).ok);
    QVERIFY(!ask(server, onlineDatabase::betaReference, longTime).ok);
    if (memory.isAvailable())
        QVERIFY2(memory.growth() < (64 << 20), qPrintable(QString::number(memory.growth())));
}

void tst_httpFailures::longReplies_data()
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

void tst_httpFailures::longReplies()
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

QTEST_GUILESS_MAIN(tst_httpFailures)
#include "tst_httpFailures.moc"
