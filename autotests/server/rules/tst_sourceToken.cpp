// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/sourceToken.h"

#include <QtTest>

class tst_sourceToken : public QObject
{
    Q_OBJECT

private slots:
    void networks_data();
    void networks();
    void noAddress_data();
    void noAddress();
    void tokens();
    void days_data();
    void days();
    void keys();
};

void tst_sourceToken::networks_data()
{
    QTest::addColumn<QString>("one");
    QTest::addColumn<QString>("other");
    QTest::addColumn<bool>("isSame");
    const auto row = [](const char *title, const char *one, const char *other, bool isSame) {
        QTest::newRow(title) << QString::fromLatin1(one) << QString::fromLatin1(other) << isSame;
    };
    row("last byte", "192.0.2.1", "192.0.2.254", true);
    row("third byte", "192.0.2.1", "192.0.3.1", false);
    row("first byte", "192.0.2.1", "193.0.2.1", false);
    row("mapped", "192.0.2.1", "::ffff:192.0.2.77", true);
    row("mapped, in hex", "192.0.2.1", "::FFFF:c000:0201", true);
    row("mapped, another", "192.0.2.1", "::ffff:192.0.3.1", false);
    row("behind 48 bits", "2001:db8:1:2::3", "2001:db8:1:ffff:1:2:3:4", true);
    row("within 48 bits", "2001:db8:1::1", "2001:db8:2::1", false);
    row("notation", "2001:0DB8:0001:0:0:0:0:1", "2001:db8:1::9", true);
    row("interface", "fe80::1%eth0", "fe80::2%eth1", true);
    row("both kinds", "0.0.0.0", "::", false);
    row("loopback", "127.0.0.1", "::1", false);
}

void tst_sourceToken::networks()
{
    QFETCH(QString, one);
    QFETCH(QString, other);
    QVERIFY(!networkOf(one).isEmpty());
    QVERIFY(!networkOf(other).isEmpty());
    QTEST(networkOf(one) == networkOf(other), "isSame");
}

void tst_sourceToken::noAddress_data()
{
    QTest::addColumn<QString>("text");
    for (const char *text : {"", " ", "unknown", "1.2.3", "1.2.3.4.5", "1.2.3.256", "1.2.3.4 ",
                             "1.2.3.4, 5.6.7.8", "1.2.3.4:80", "2001:db8::1::2", "[::1]", "%eth0"})
        QTest::newRow(text) << QString::fromLatin1(text);
}

void tst_sourceToken::noAddress()
{
    QFETCH(QString, text);
    QVERIFY(networkOf(text).isEmpty());
    QVERIFY(sourceToken(networkOf(text), "key").isEmpty());
}

/// HMAC with SHA-256; the value was computed by openssl:
/// printf '\x20\x01\x0d\xb8\x06\x07' | openssl dgst -sha256 -hmac key
void tst_sourceToken::tokens()
{
    const QByteArray network = networkOf(QStringLiteral("2001:db8:607::1"));
    QCOMPARE(network, QByteArray("\x20\x01\x0d\xb8\x06\x07"));
    QCOMPARE(sourceToken(network, "key"),
             QByteArray("e1b974cff23335efe06e4f092c033dccc1bdcc33d9376fc3e5461d3f37847a69"));
    QVERIFY(sourceToken(network, "key") != sourceToken(network, "another key"));
    QVERIFY(sourceToken(network, "key")
            != sourceToken(networkOf(QStringLiteral("2001:db8:608::1")), "key"));
}

void tst_sourceToken::days_data()
{
    QTest::addColumn<QString>("time");
    QTest::addColumn<qint64>("day");
    QTest::newRow("start") << "1970-01-01T00:00:00.000Z" << qint64(0);
    QTest::newRow("end of a day") << "1970-01-01T23:59:59.999Z" << qint64(0);
    QTest::newRow("next day") << "1970-01-02T00:00:00.000Z" << qint64(1);
    QTest::newRow("before") << "1969-12-31T23:59:59.999Z" << qint64(-1);
    QTest::newRow("day before") << "1969-12-31T00:00:00.000Z" << qint64(-1);
    QTest::newRow("today") << "2026-11-21T12:00:00.000Z" << qint64(20778);
}

void tst_sourceToken::days()
{
    QFETCH(QString, time);
    QTEST(dayOf(QDateTime::fromString(time, Qt::ISODateWithMs).toMSecsSinceEpoch()), "day");
}

void tst_sourceToken::keys()
{
    QSet<QByteArray> all;
    for (int i = 0; i < 100; ++i) {
        const QByteArray key = newDayKey();
        QCOMPARE(key.size(), 32);
        all.insert(key);
    }
    QCOMPARE(all.size(), 100);
}

QTEST_APPLESS_MAIN(tst_sourceToken)
#include "tst_sourceToken.moc"
