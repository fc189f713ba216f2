// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rateLimit.h"

#include <QtTest>

using namespace std::chrono_literals;

namespace
{

/// One address for each number.
ipAddress numbered(unsigned number)
{
    return boost::asio::ip::make_address_v4(0x0A000000U + number);
}

const ipAddress anybody = numbered(1);
const auto now = rateLimit::clock::now();

} // namespace

class tst_rateLimit : public QObject
{
    Q_OBJECT

private slots:
    void limits();
    void lookingTakesNothing();
    void accountsAreApart();
    void refills();
    void off();
    void theOldestIsForgotten();
    void secondsPerToken_data();
    void secondsPerToken();
};

void tst_rateLimit::limits()
{
    rateLimit limit(3, 60s);
    for (int i = 0; i < 3; ++i)
        QVERIFY(limit.take(anybody, now));
    QVERIFY(!limit.take(anybody, now));
    QVERIFY(!limit.take(anybody, now + 19s));
    QVERIFY(limit.take(anybody, now + 21s));
    QVERIFY(!limit.take(anybody, now + 21s));
}

void tst_rateLimit::lookingTakesNothing()
{
    rateLimit limit(1, 60s);
    for (int i = 0; i < 3; ++i)
        QVERIFY(limit.hasToken(anybody, now));
    QVERIFY(limit.take(anybody, now));
    QVERIFY(!limit.hasToken(anybody, now));
    QVERIFY(limit.hasToken(anybody, now + 60s));
}

void tst_rateLimit::accountsAreApart()
{
    rateLimit limit(1, 60s);
    QVERIFY(limit.take(numbered(1), now));
    QVERIFY(limit.take(numbered(2), now));
    QVERIFY(!limit.take(numbered(1), now));
}

void tst_rateLimit::refills()
{
    rateLimit limit(2, 10s);
    QVERIFY(limit.take(anybody, now));
    // No more than the limit is saved up.
    const auto later = now + 1h;
    QVERIFY(limit.take(anybody, later));
    QVERIFY(limit.take(anybody, later));
    QVERIFY(!limit.take(anybody, later));
}

void tst_rateLimit::off()
{
    rateLimit limit(0, 1s);
    for (int i = 0; i < 1000; ++i)
        QVERIFY(limit.take(anybody, now));
    QVERIFY(limit.hasToken(anybody, now));
}

void tst_rateLimit::theOldestIsForgotten()
{
    rateLimit limit(1, 60s, 100);
    for (unsigned i = 0; i < 100; ++i)
        QVERIFY(limit.take(numbered(i), now));
    QVERIFY(!limit.take(numbered(0), now)); // seen again, so that 1 is the oldest
    for (unsigned i = 100; i < 110; ++i)
        QVERIFY(limit.take(numbered(i), now));
    QVERIFY(!limit.take(numbered(0), now));
    QVERIFY(!limit.take(numbered(11), now));
    QVERIFY(limit.take(numbered(10), now));
}

void tst_rateLimit::secondsPerToken_data()
{
    QTest::addColumn<int>("tokens");
    QTest::addColumn<int>("period");
    QTest::addColumn<int>("seconds");
    QTest::newRow("many in a second") << 200 << 10 << 1;
    QTest::newRow("one in some seconds") << 30 << 600 << 20;
    QTest::newRow("rounded up") << 3 << 10 << 4;
    QTest::newRow("no limit") << 0 << 10 << 1;
}

void tst_rateLimit::secondsPerToken()
{
    QFETCH(int, tokens);
    QFETCH(int, period);
    QTEST(rateLimit(tokens, std::chrono::seconds(period)).secondsPerToken(), "seconds");
}

QTEST_APPLESS_MAIN(tst_rateLimit)
#include "tst_rateLimit.moc"
