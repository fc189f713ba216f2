// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/connectionTable.h"

#include <QtTest>

#include <memory>

using namespace std::chrono_literals;

namespace
{

const auto start = steadyClock::now();

ipAddress numbered(unsigned number)
{
    return boost::asio::ip::make_address_v4(0x0A000000U + number);
}

/// A connection that is said what it does.
class fakeGuest : public guest
{
public:
    fakeGuest(connectionTable &in, unsigned from) : guest(numbered(from)), table(in)
    {
        table.enter(*this);
    }
    ~fakeGuest() override { giveWay(); }
    void giveWay() override
    {
        if (isThere)
            table.leave(*this);
        isThere = false;
    }
    bool hasUnreadBytes() const override { return isUnread; }
    /// It has been @p what since the start, with so many bytes, the last of them a while after.
    void does(activity what, std::size_t bytes, std::chrono::milliseconds latest)
    {
        current = {start, start + latest, bytes};
        table.begin(*this, what);
    }

    connectionTable &table;
    bool isThere = true;
    bool isUnread = false;
};

} // namespace

class tst_connectionTable : public QObject
{
    Q_OBJECT

private slots:
    void stalled_data();
    void stalled();
    void roomIsLeft();
    void orderOfGivingWay();
    void progressStays();
    void oneAccount();
    void accountsAreForgotten();
    void closesIdleOnes();
};

void tst_connectionTable::stalled_data()
{
    QTest::addColumn<int>("bytes");
    QTest::addColumn<int>("latest");
    QTest::addColumn<int>("now");
    QTest::addColumn<bool>("isStalled");
    QTest::newRow("just begun") << 1 << 0 << 0 << false;
    QTest::newRow("short pause") << 1 << 0 << 249 << false;
    QTest::newRow("silent") << 60'000 << 0 << 250 << true;
    QTest::newRow("slow, but in its first second") << 10 << 900 << 999 << false;
    QTest::newRow("drips") << 1'000 << 1'000 << 1'000 << true;
    QTest::newRow("fast enough") << 1'024 << 1'000 << 1'000 << false;
    QTest::newRow("fast enough for long") << 8 * 1'024 << 7'900 << 8'000 << false;
    QTest::newRow("became slow") << 7 * 1'024 << 7'900 << 8'000 << true;
}

void tst_connectionTable::stalled()
{
    QFETCH(int, bytes);
    QFETCH(int, latest);
    QFETCH(int, now);
    const transfer moved{start, start + std::chrono::milliseconds(latest),
                         static_cast<std::size_t>(bytes)};
    QTEST(moved.isStalled(start + std::chrono::milliseconds(now)), "isStalled");
}

void tst_connectionTable::roomIsLeft()
{
    connectionTable table(2, 2);
    const fakeGuest first(table, 1);
    QVERIFY(table.makeRoom(start));
    QVERIFY(first.isThere);
    const fakeGuest second(table, 2);
    QVERIFY(table.makeRoom(start)); // only now somebody has to go
    QVERIFY(!first.isThere && second.isThere);
    QCOMPARE(table.size(), std::size_t(1));
}

void tst_connectionTable::orderOfGivingWay()
{
    connectionTable table(6, 6);
    fakeGuest writing(table, 1);
    fakeGuest reading(table, 2);
    const fakeGuest idle(table, 3);
    const fakeGuest idleLater(table, 4);
    fakeGuest closing(table, 5);
    fakeGuest working(table, 6);
    writing.does(activity::writing, 0, 0ms);
    reading.does(activity::reading, 0, 0ms);
    closing.does(activity::closing, 0, 0ms);
    working.does(activity::working, 0, 0ms);
    std::vector<std::unique_ptr<fakeGuest>> more;
    const auto isNext = [&](const fakeGuest &expected) {
        const bool isMade = expected.isThere && table.makeRoom(start + 5s) && !expected.isThere;
        // It makes progress, and so never gives way itself.
        more.push_back(std::make_unique<fakeGuest>(table, 7));
        more.back()->does(activity::reading, 1'000'000, 5s);
        return isMade;
    };
    QVERIFY(isNext(closing));
    QVERIFY(isNext(idle));
    QVERIFY(isNext(idleLater));
    QVERIFY(isNext(reading));
    QVERIFY(isNext(writing));
    QVERIFY(!table.makeRoom(start + 5s));
    QVERIFY(working.isThere);
}

void tst_connectionTable::progressStays()
{
    connectionTable table(2, 2);
    fakeGuest reading(table, 1);
    reading.does(activity::reading, 100'000, 2s);
    fakeGuest unread(table, 2);
    unread.isUnread = true; // its request has come, and was not read yet
    QVERIFY(!table.makeRoom(start + 2s));
    QVERIFY(reading.isThere && unread.isThere);
    QVERIFY(table.makeRoom(start + 3s));
    QVERIFY(!reading.isThere && unread.isThere);
}

void tst_connectionTable::oneAccount()
{
    connectionTable table(100, 2);
    const fakeGuest other(table, 2);
    QVERIFY(table.makeRoomOf(numbered(1), start));
    fakeGuest first(table, 1);
    QVERIFY(table.makeRoomOf(numbered(1), start));
    const fakeGuest second(table, 1);
    first.does(activity::working, 0, 0ms);
    // Nobody else gives way for it.
    QVERIFY(table.makeRoomOf(numbered(1), start));
    QVERIFY(first.isThere && !second.isThere && other.isThere);
    fakeGuest third(table, 1);
    third.does(activity::working, 0, 0ms);
    QVERIFY(!table.makeRoomOf(numbered(1), start + 5s));
    QVERIFY(table.makeRoomOf(numbered(2), start));
    QVERIFY(other.isThere);
}

void tst_connectionTable::accountsAreForgotten()
{
    connectionTable table(100, 1);
    for (int i = 0; i < 3; ++i) {
        QVERIFY(table.makeRoomOf(numbered(1), start));
        fakeGuest one(table, 1);
        one.does(activity::working, 0, 0ms);
        QVERIFY(!table.makeRoomOf(numbered(1), start));
    }
    QCOMPARE(table.size(), std::size_t(0));
}

void tst_connectionTable::closesIdleOnes()
{
    connectionTable table(10, 10);
    const fakeGuest idle(table, 1);
    fakeGuest closing(table, 2);
    closing.does(activity::closing, 0, 0ms);
    fakeGuest reading(table, 3);
    reading.does(activity::reading, 0, 0ms);
    QCOMPARE(table.size(activity::idle), std::size_t(1));
    table.closeIdle();
    QVERIFY(!idle.isThere && !closing.isThere && reading.isThere);
    QCOMPARE(table.size(), std::size_t(1));
}

QTEST_APPLESS_MAIN(tst_connectionTable)
#include "tst_connectionTable.moc"
