// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/networks.h"

#include <QtTest>

namespace
{

ipAddress address(const char *text)
{
    return boost::asio::ip::make_address(text);
}

} // namespace

class tst_networks : public QObject
{
    Q_OBJECT

private slots:
    void contains_data();
    void contains();
    void nonsense_data();
    void nonsense();
    void accounts_data();
    void accounts();
    void clients_data();
    void clients();
    void nobodyIsTrusted();
};

void tst_networks::contains_data()
{
    QTest::addColumn<QByteArray>("network");
    QTest::addColumn<QByteArray>("inside");
    QTest::addColumn<QByteArray>("outside");
    const auto row = [](const char *network, const char *inside, const char *outside) {
        QTest::newRow(network) << QByteArray(network) << QByteArray(inside) << QByteArray(outside);
    };
    row("127.0.0.1", "127.0.0.1", "127.0.0.2");
    row("10.0.0.0/8", "10.255.255.255", "11.0.0.0");
    row("192.0.2.128/25", "192.0.2.128", "192.0.2.127");
    row("192.0.2.7/32", "::ffff:192.0.2.7", "192.0.2.6");
    row("::1", "::1", "127.0.0.1");
    row("2001:db8::/32", "2001:db8:ffff::1", "2001:db9::1");
    row("0.0.0.0/0", "255.1.2.3", "::2");
    row("::/0", "fe80::1", "1.2.3.4");
}

void tst_networks::contains()
{
    QFETCH(QByteArray, network);
    QFETCH(QByteArray, inside);
    QFETCH(QByteArray, outside);
    const auto parsed = parseNetwork(network.toStdString());
    QVERIFY(parsed.has_value());
    QVERIFY(parsed->contains(address(inside)));
    QVERIFY(!parsed->contains(address(outside)));
}

void tst_networks::nonsense_data()
{
    QTest::addColumn<QByteArray>("text");
    for (const char *text :
         {"", "x", "10.0.0.0/33", "10.0.0.0/-1", "10.0.0.0/", "10.0.0.0/8x", "10.0.0.1/8", "::/129",
          "10.0.0/8", "example.org", "10.0.0.0/8/8", " 10.0.0.0/8", "2001:db8::1/32"})
        QTest::newRow(text) << QByteArray(text);
}

void tst_networks::nonsense()
{
    QFETCH(QByteArray, text);
    QVERIFY(!parseNetwork(text.toStdString()));
}

void tst_networks::accounts_data()
{
    QTest::addColumn<QByteArray>("client");
    QTest::addColumn<QByteArray>("account");
    const auto row = [](const char *name, const char *client, const char *account) {
        QTest::newRow(name) << QByteArray(client) << QByteArray(account);
    };
    row("IPv4", "192.0.2.7", "192.0.2.7");
    row("IPv4 as IPv6", "::ffff:192.0.2.7", "192.0.2.7");
    row("IPv6", "2001:db8:1:2:3:4:5:6", "2001:db8:1:2::");
    row("IPv6 of the same network", "2001:db8:1:2:ffff::", "2001:db8:1:2::");
    row("loopback", "::1", "::");
}

void tst_networks::accounts()
{
    QFETCH(QByteArray, client);
    QFETCH(QByteArray, account);
    QCOMPARE(QByteArray::fromStdString(accountOf(address(client)).to_string()), account);
}

void tst_networks::clients_data()
{
    QTest::addColumn<QByteArray>("peer");
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QByteArray>("client");
    const auto row = [](const char *name, const char *peer, const char *line, const char *client) {
        QTest::newRow(name) << QByteArray(peer) << QByteArray(line) << QByteArray(client);
    };
    row("proxy", "10.0.0.1", "192.0.2.7", "192.0.2.7");
    row("the last one", "10.0.0.1", "203.0.113.1, 192.0.2.7", "192.0.2.7");
    row("the last of three", "10.0.0.1", "203.0.113.1, 203.0.113.2, 192.0.2.7", "192.0.2.7");
    row("blanks", "10.0.0.1", "203.0.113.1 ,\t 192.0.2.7 \t", "192.0.2.7");
    row("IPv6", "10.0.0.1", "2001:db8::7", "2001:db8::7");
    row("IPv4 as IPv6", "10.0.0.1", "::ffff:192.0.2.7", "192.0.2.7");
    row("not from a proxy", "192.0.2.1", "203.0.113.1", "192.0.2.1");
    row("no line", "10.0.0.1", "", "10.0.0.1");
    row("a name", "10.0.0.1", "example.org", "10.0.0.1");
    row("a port", "10.0.0.1", "192.0.2.7:80", "10.0.0.1");
    row("an empty end", "10.0.0.1", "192.0.2.7,", "10.0.0.1");
    row("kilobytes", "10.0.0.1", QByteArray(8'000, 'x').constData(), "10.0.0.1");
    row("the peer as IPv6", "::ffff:10.0.0.1", "192.0.2.7", "192.0.2.7");
    row("the peer as IPv6, not a proxy", "::ffff:192.0.2.1", "192.0.2.7", "192.0.2.1");
}

void tst_networks::clients()
{
    QFETCH(QByteArray, peer);
    QFETCH(QByteArray, line);
    QFETCH(QByteArray, client);
    const std::vector<ipNetwork> proxies = {*parseNetwork("::1"), *parseNetwork("10.0.0.0/24")};
    const ipAddress found = clientOf(address(peer), line.toStdString(), proxies);
    QCOMPARE(QByteArray::fromStdString(found.to_string()), client);
}

void tst_networks::nobodyIsTrusted()
{
    const ipAddress found = clientOf(address("127.0.0.1"), "192.0.2.7", {});
    QCOMPARE(QString::fromStdString(found.to_string()), QStringLiteral("127.0.0.1"));
}

QTEST_APPLESS_MAIN(tst_networks)
#include "tst_networks.moc"
