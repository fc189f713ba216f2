// SPDX-License-Identifier: GPL-3.0-or-later

// Requests by TLS, to servers that are to be trusted and others.

#include "data/httpDatabase.h"

#include "askDatabase.h"
#include "support/tlsServer.h"

#include <QSslConfiguration>
#include <QtTest>

#include <optional>

class tst_httpsDatabase : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void trusted_data();
    void trusted();
    void distrusted_data();
    void distrusted();
    void noTls();
    void redirects_data();
    void redirects();
    void usualPort();

private:
    /// What a request to a server of this identity comes to.
    outcome askAs(const fakeServer &server, int requested)
    {
        return ask(QStringLiteral("https://") + server.host(), requested, longTime);
    }
    static std::unique_ptr<QTcpServer> listenerAs(const tlsIdentity &shown)
    {
        return std::make_unique<tlsListener>(shown);
    }

    std::optional<certificateMaker> certificates;
};

/// This process trusts the authority of these tests, and nobody else.
void tst_httpsDatabase::initTestCase()
{
    if (!certificateMaker::isPossible())
        QSKIP("there is no TLS here, or no openssl to make certificates");
    certificates.emplace();
    QVERIFY2(!certificates->authority.certificate.isNull(), certificates->error.constData());
    QSslConfiguration trust = QSslConfiguration::defaultConfiguration();
    trust.setCaCertificates({certificates->authority.certificate});
    QSslConfiguration::setDefaultConfiguration(trust);
}

void tst_httpsDatabase::trusted_data()
{
    QTest::addColumn<int>("requested");
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QByteArray>("data");
    QTest::newRow("version") << 0 << QByteArray("1500") << QByteArray("1500");
    QTest::newRow("list") << 1 << qCompress(list) << list;
    QTest::newRow("upload") << 3 << QByteArray("thank you") << QByteArray("in");
}

void tst_httpsDatabase::trusted()
{
    QFETCH(int, requested);
    QFETCH(QByteArray, reply);
    const fakeServer server(
        sending(httpReply(reply)),
        listenerAs(certificates->trusted(QStringLiteral("DNS:other.example,IP:127.0.0.1"))));
    const outcome result = askAs(server, requested);
    QVERIFY2(result.ok, qPrintable(result.refusal));
    QCOMPARE(server.requests.size(), 1);
    QCOMPARE(result.refusal, QString());
    QTEST(result.data, "data");
    QVERIFY(server.lastHeaders().contains("\r\nHost: " + server.host().toLatin1() + "\r\n"));
}

/// A server that is not trusted gets to read nothing.
void tst_httpsDatabase::distrusted_data()
{
    QTest::addColumn<bool>("isSigned");
    QTest::addColumn<QString>("names");
    QTest::addColumn<QString>("reason");
    QTest::newRow("self-signed") << false << QStringLiteral("IP:127.0.0.1")
                                 << QStringLiteral("self-signed");
    QTest::newRow("other name") << true << QStringLiteral("DNS:other.example")
                                << QStringLiteral("host name");
    QTest::newRow("other address")
        << true << QStringLiteral("IP:127.0.0.2") << QStringLiteral("host name");
}

void tst_httpsDatabase::distrusted()
{
    QFETCH(bool, isSigned);
    QFETCH(QString, names);
    QFETCH(QString, reason);
    const fakeServer server(
        sending(httpReply("1500")),
        listenerAs(isSigned ? certificates->trusted(names) : certificates->untrusted(names)));
    for (const int requested : {onlineDatabase::referenceVersion, onlineDatabase::reference,
                                onlineDatabase::storeResults}) {
        const outcome result = askAs(server, requested);
        QVERIFY(!result.ok);
        QVERIFY2(result.refusal.startsWith(
                     QStringLiteral("the certificate of 127.0.0.1 is not trusted: ")),
                 qPrintable(result.refusal));
        QVERIFY2(result.refusal.contains(reason), qPrintable(result.refusal));
    }
    QVERIFY(server.requests.isEmpty());
}

void tst_httpsDatabase::noTls()
{
    QTcpServer plain;
    QVERIFY(plain.listen(QHostAddress::LocalHost));
    connect(&plain, &QTcpServer::newConnection, &plain,
            [&plain] { plain.nextPendingConnection()->write("HTTP/1.1 400 Bad Request\r\n\r\n"); });
    const outcome result = ask(QStringLiteral("https://127.0.0.1:%1").arg(plain.serverPort()),
                               onlineDatabase::referenceVersion, longTime);
    QVERIFY(!result.ok);
    QVERIFY2(result.refusal.startsWith(QStringLiteral("no secure connection: ")),
             qPrintable(result.refusal));
}

void tst_httpsDatabase::redirects_data()
{
    QTest::addColumn<bool>("isToTls");
    QTest::newRow("to TLS") << true;
    QTest::newRow("away from TLS") << false;
}

void tst_httpsDatabase::redirects()
{
    QFETCH(bool, isToTls);
    const auto identity = certificates->trusted(QStringLiteral("IP:127.0.0.1"));
    const fakeServer plain(sending(httpReply("1500")));
    const fakeServer secure(sending(httpReply("1500")), listenerAs(identity));
    const fakeServer &target = isToTls ? secure : plain;
    const QByteArray scheme = isToTls ? "https://" : "http://";
    const QByteArray location =
        "Location: " + scheme + target.host().toLatin1() + "/php/Fennick/mcp.php\r\n";
    const fakeServer server(sending(httpReply("", "307 Temporary Redirect", location)),
                            listenerAs(identity));
    QVERIFY(!askAs(server, onlineDatabase::referenceVersion).ok);
    QCOMPARE(server.requests.size(), 1);
    QCOMPARE(target.connections, 0);
}

void tst_httpsDatabase::usualPort()
{
    tlsListener listener(certificates->untrusted(QStringLiteral("IP:127.0.0.1")));
    if (!listener.listen(QHostAddress::LocalHost, 443))
        QSKIP("port 443 is not to be had");
    const outcome result =
        ask(QStringLiteral("https://127.0.0.1"), onlineDatabase::referenceVersion, longTime);
    QVERIFY2(result.refusal.contains(QStringLiteral("is not trusted")), qPrintable(result.refusal));
}

QTEST_GUILESS_MAIN(tst_httpsDatabase)
#include "tst_httpsDatabase.moc"
