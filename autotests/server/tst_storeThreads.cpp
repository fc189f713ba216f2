// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storeThreads.h"

#include "server/rules/sourceToken.h"
#include "storeFixture.h"

#include <QtTest>

#include <atomic>
#include <future>

using namespace std::chrono_literals;

namespace
{

/// What @p ask hands to the taker that it is given.
template <typename Value, typename Ask> Value awaited(const Ask &ask)
{
    const auto promise = std::make_shared<std::promise<Value>>();
    ask([promise](const Value &value) { promise->set_value(value); });
    return promise->get_future().get();
}

bool add(storeThreads &store, const storedUpload &upload, const QByteArray &network = {})
{
    storedUpload sent = upload;
    sent.network = network;
    return awaited<bool>([&](const auto &take) { store.add(sent, take); });
}

std::optional<int> newestVersion(storeThreads &store)
{
    return awaited<std::optional<int>>([&](const auto &take) { store.newestVersion(take); });
}

QByteArray newestList(storeThreads &store, bool isBeta)
{
    const auto list = awaited<std::optional<storedList>>(
        [&](const auto &take) { store.newestList(isBeta, take); });
    return list ? list->content : QByteArray("none");
}

bool isWritable(storeThreads &store)
{
    return awaited<bool>([&](const auto &take) { store.checkWritable(take); });
}

/// Keeps everybody else from writing.
struct writeLock {
    explicit writeLock(const databaseAddress &address) : db(address, databaseUse::operating)
    {
        isHeld = db.open().and_then([this] { return lockUploads(db); }).has_value();
    }
    ~writeLock() { db.change(QStringLiteral("ROLLBACK")); }

    database db;
    bool isHeld = false;
};

} // namespace

class tst_storeThreads : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY2(fixture.begin(), qPrintable(fixture.error())); }

    void manyAtOnce_data() { storeFixture::addProducts(); }
    void manyAtOnce();
    void newListsAreSeen_data() { storeFixture::addProducts(); }
    void newListsAreSeen();
    void sources_data() { storeFixture::addProducts(); }
    void sources();
    void oneThatIsRefused_data() { storeFixture::addProducts(); }
    void oneThatIsRefused();
    void writable_data() { storeFixture::addProducts(); }
    void writable();
    void writableForAMoment();
    void backlogIsBounded();
    void databaseComesBack();

private:
    storeFixture fixture;
};

void tst_storeThreads::manyAtOnce()
{
    {
        storeThreads store(fixture.address());
        std::atomic<int> stored = 0;
        constexpr int clients = 8;
        std::vector<std::thread> writers;
        writers.reserve(clients);
        for (int client = 0; client < clients; ++client) {
            writers.emplace_back([&store, &stored, client] {
                for (int i = 0; i < 25; ++i) {
                    stored += add(store, numbered(client * 25 + i + 1)) ? 1 : 0;
                    if (newestVersion(store) != 1010)
                        stored = -1000;
                }
            });
        }
        for (std::thread &writer : writers)
            writer.join();
        QCOMPARE(stored, 200);
    }
    resultStore store(fixture.address());
    QVERIFY(store.open());
    QCOMPARE(uploadsIn(store).size(), 200);
}

/// Whoever is told of a version gets a list that is as new.
void tst_storeThreads::newListsAreSeen()
{
    resultStore publisher(fixture.address());
    QVERIFY(publisher.open());
    storeThreads store(fixture.address());
    QCOMPARE(newestVersion(store).value_or(-1), 1010);
    QCOMPARE(newestList(store, false), QByteArray());
    QVERIFY(publisher.restore({}, {{1011, false, 0, "normal"}, {1011, true, 0, "beta"}}));
    QCOMPARE(newestVersion(store).value_or(-1), 1011);
    QCOMPARE(newestList(store, false), QByteArray("normal"));
    QCOMPARE(newestList(store, true), QByteArray("beta"));
    QVERIFY(publisher.restore({}, {{1012, false, 0, "newer"}, {1012, true, 0, "newer beta"}}));
    QCOMPARE(newestList(store, false), QByteArray("newer"));
    QCOMPARE(newestVersion(store).value_or(-1), 1012);
}

/// Those of one network have the same token, which says nothing of the network.
void tst_storeThreads::sources()
{
    const auto today = [] { return dayOf(QDateTime::currentMSecsSinceEpoch()); };
    const qint64 day = today();
    {
        storeThreads store(fixture.address());
        QVERIFY(add(store, numbered(1), "net one"));
        QVERIFY(add(store, numbered(2), "net two"));
        QVERIFY(add(store, numbered(3), "net one"));
        QVERIFY(add(store, numbered(4)));
    }
    storeThreads restarted(fixture.address());
    QVERIFY(add(restarted, numbered(5), "net one"));
    resultStore store(fixture.address());
    QVERIFY(store.open());
    const QVector<storedUpload> all = uploadsIn(store);
    QCOMPARE(all.size(), 5);
    if (today() != day)
        QSKIP("the day has ended in the midst of it");
    QCOMPARE(all.at(2).source, all.at(0).source);
    QCOMPARE(all.at(4).source, all.at(0).source);
    QVERIFY(all.at(0).source.size() >= 16);
    QVERIFY(all.at(1).source != all.at(0).source);
    QVERIFY(!all.at(0).source.contains("net"));
    QCOMPARE(all.at(3).source, QByteArray());
}

/// An upload that the database refuses does not cost the others of its batch.
void tst_storeThreads::oneThatIsRefused()
{
    std::atomic<int> stored = 0;
    std::atomic<int> refused = 0;
    {
        // All of them wait until the lock is gone, and are one batch.
        storeThreads store(fixture.address());
        QVERIFY(isWritable(store));
        const writeLock lock(fixture.address());
        QVERIFY(lock.isHeld);
        const auto count = [&](bool isStored) { isStored ? ++stored : ++refused; };
        store.add(numbered(1), count);
        for (int i = 2; i < 10; ++i) {
            storedUpload upload = numbered(i);
            if (i == 5)
                upload.state = QStringLiteral("nonsense");
            store.add(upload, count);
        }
    }
    QCOMPARE(stored, 8);
    QCOMPARE(refused, 1);
    resultStore store(fixture.address());
    QVERIFY(store.open());
    QCOMPARE(uploadsIn(store).size(), 8);
}

void tst_storeThreads::writable()
{
    storeThreads store(fixture.address());
    QVERIFY(isWritable(store));
    resultStore other(fixture.address());
    QVERIFY(other.open());
    QVERIFY(uploadsIn(other).isEmpty());
}

/// Who asks soon after another does not make the database write once more.
void tst_storeThreads::writableForAMoment()
{
    storeThreads store(fixture.address());
    bool isKnown = false;
    // The moment may have passed where this thread had to wait.
    for (int i = 0; i < 3 && !isKnown; ++i) {
        QVERIFY(isWritable(store));
        const writeLock lock(fixture.address());
        QVERIFY(lock.isHeld);
        isKnown = isWritable(store);
    }
    QVERIFY(isKnown);
}

void tst_storeThreads::backlogIsBounded()
{
    fixture.beginPostgres();
    storeThreads store(fixture.address());
    QVERIFY(isWritable(store));
    std::atomic<int> stored = 0;
    std::atomic<int> refused = 0;
    constexpr int more = 700; // than a batch and the backlog
    const auto total = static_cast<int>(storeThreads::maximumBacklog) + more;
    {
        const writeLock lock(fixture.address());
        QVERIFY(lock.isHeld);
        for (int i = 1; i <= total; ++i)
            store.add(numbered(i), [&](bool isStored) { isStored ? ++stored : ++refused; });
        QVERIFY(refused >= more - 500 && refused <= more);
        QVERIFY(!store.end(50ms));
    }
    QVERIFY(store.end(std::chrono::milliseconds::max()));
    QCOMPARE(stored + refused, total);
    QVERIFY(stored > 0); // and all that had waited for less than their time
    // Nobody is kept waiting by one that has ended.
    QVERIFY(!add(store, numbered(total + 1)));
    QVERIFY(!newestVersion(store));
    QVERIFY(!isWritable(store));
}

void tst_storeThreads::databaseComesBack()
{
    fixture.beginPostgres();
    storeThreads store(fixture.address());
    QVERIFY(add(store, numbered(1)));
    QCOMPARE(newestVersion(store).value_or(-1), 1010);
    QVERIFY(fixture.postgres.stop());
    QVERIFY(!newestVersion(store).has_value());
    QVERIFY(!add(store, numbered(2)));
    QVERIFY(!isWritable(store));
    QVERIFY(fixture.postgres.start());
    QCOMPARE(newestVersion(store).value_or(-1), 1010);
    QVERIFY(add(store, numbered(3)));
}

QTEST_GUILESS_MAIN(tst_storeThreads)
#include "tst_storeThreads.moc"
