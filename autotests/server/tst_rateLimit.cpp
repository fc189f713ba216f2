// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rateLimit.h"

#include <QtTest>

using namespace std::chrono_literals;

class tst_rateLimit : public QObject
{
    Q_OBJECT

private slots:
    void limits();
    void addressesAreApart();
    void refills();
    void off();
    void manyAddresses();
};

void tst_rateLimit::limits()
{
    rateLimit limit(3, 60s);
    const auto now = rateLimit::clock::now();
    for (int i = 0; i < 3; ++i)
        QVERIFY(limit.isAllowed("a", now));
    QVERIFY(!limit.isAllowed("a", now));
    QVERIFY(!limit.isAllowed("a", now + 19s));
    QVERIFY(limit.isAllowed("a", now + 21s));
    QVERIFY(!limit.isAllowed("a", now + 21s));
}

void tst_rateLimit::addressesAreApart()
{
    rateLimit limit(1, 60s);
    const auto now = rateLimit::clock::now();
    QVERIFY(limit.isAllowed("a", now));
    QVERIFY(limit.isAllowed("b", now));
    QVERIFY(!limit.isAllowed("a", now));
}

void tst_rateLimit::refills()
{
    rateLimit limit(2, 10s);
    const auto now = rateLimit::clock::now();
    QVERIFY(limit.isAllowed("a", now));
    // No more than the limit is saved up.
    const auto later = now + 1h;
    QVERIFY(limit.isAllowed("a", later));
    QVERIFY(limit.isAllowed("a", later));
    QVERIFY(!limit.isAllowed("a", later));
}

void tst_rateLimit::off()
{
    rateLimit limit(0, 1s);
    const auto now = rateLimit::clock::now();
    for (int i = 0; i < 1000; ++i)
        QVERIFY(limit.isAllowed("a", now));
}

void tst_rateLimit::manyAddresses()
{
    rateLimit limit(1, 60s);
    const auto now = rateLimit::clock::now();
    int allowed = 0;
    for (int i = 0; i < 100'500; ++i)
        allowed += limit.isAllowed(std::to_string(i), now) ? 1 : 0;
    QCOMPARE(allowed, 100'000);
    // The quiet ones make room.
    QVERIFY(limit.isAllowed("new", now + 61s));
}

QTEST_APPLESS_MAIN(tst_rateLimit)
#include "tst_rateLimit.moc"
