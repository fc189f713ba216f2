// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storeThreads.h"

#include "server/log.h"

namespace
{

/// The most uploads in one transaction, so that none waits for long.
constexpr std::size_t largestBatch = 500;

/// After this time, whoever waits is told that the database does not answer.
constexpr auto timeOut = std::chrono::seconds(15);

/// Stores @p uploads. If that fails it is tried once more on a new connection: the database may
/// have been restarted.
outcome<void> addTo(resultStore &store, const QVector<storedUpload> &uploads)
{
    const auto add = [&] { return store.open().and_then([&] { return store.add(uploads); }); };
    outcome<void> done = add();
    if (done)
        return done;
    writeLog(QStringLiteral("storing again after: %1").arg(done.error()));
    store.close();
    return add();
}

} // namespace

storeThreads::storeThreads(const databaseAddress &address, int readers) : place(address)
{
    for (int i = 0; i < readers; ++i)
        threads.emplace_back([this] { serveReads(); });
    threads.emplace_back([this] { serveWrites(); });
}

storeThreads::~storeThreads()
{
    {
        const std::lock_guard lock(mutex);
        isEnding = true;
    }
    readsChanged.notify_all();
    writesChanged.notify_all();
    for (std::thread &thread : threads)
        thread.join();
}

void storeThreads::serveReads()
{
    resultStore store(place);
    std::unique_lock lock(mutex);
    while (true) {
        readsChanged.wait(lock, [this] { return isEnding || !reads.empty(); });
        if (reads.empty())
            return;
        const readJob job = std::move(reads.front());
        reads.pop_front();
        lock.unlock();
        job(store.open() ? &store : nullptr);
        lock.lock();
    }
}

void storeThreads::serveWrites()
{
    resultStore store(place);
    std::unique_lock lock(mutex);
    while (true) {
        writesChanged.wait(lock, [this] { return isEnding || !writes.empty(); });
        if (writes.empty())
            return;
        std::vector<writeJob> batch;
        QVector<storedUpload> uploads;
        while (!writes.empty() && batch.size() < largestBatch) {
            uploads.append(writes.front().upload);
            batch.push_back(std::move(writes.front()));
            writes.pop_front();
        }
        lock.unlock();
        const outcome<void> areStored = addTo(store, uploads);
        for (writeJob &job : batch) {
            // An upload that the database refuses must not cost the rest of its batch.
            const outcome<void> isStored =
                areStored || batch.size() == 1 ? areStored : addTo(store, {job.upload});
            if (!isStored)
                writeLog(QStringLiteral("not stored: %1").arg(isStored.error()));
            job.isStored.set_value(isStored.has_value());
        }
        lock.lock();
    }
}

template <typename Result>
std::optional<Result> storeThreads::read(outcome<Result> (*operation)(resultStore &, bool),
                                         bool argument)
{
    // Shared: whoever waits may have given up when the answer comes.
    const auto promise = std::make_shared<std::promise<std::optional<Result>>>();
    std::future<std::optional<Result>> result = promise->get_future();
    {
        const std::lock_guard lock(mutex);
        if (isEnding || reads.size() >= maximumBacklog)
            return std::nullopt;
        reads.emplace_back([promise, operation, argument](resultStore *store) {
            if (!store) {
                promise->set_value(std::nullopt);
                return;
            }
            outcome<Result> found = operation(*store, argument);
            if (!found) {
                store->close();
                found = store->open().and_then([&] { return operation(*store, argument); });
            }
            promise->set_value(found ? std::make_optional(*found) : std::nullopt);
        });
    }
    readsChanged.notify_one();
    return result.wait_for(timeOut) == std::future_status::ready ? result.get() : std::nullopt;
}

std::optional<int> storeThreads::newestVersion()
{
    return read<int>([](resultStore &store, bool) { return store.newestVersion(); }, false);
}

std::optional<storedList> storeThreads::newestList(bool isBeta)
{
    return read<storedList>([](resultStore &store, bool beta) { return store.newestList(beta); },
                            isBeta);
}

bool storeThreads::add(const storedUpload &upload)
{
    std::future<bool> isStored;
    {
        const std::lock_guard lock(mutex);
        if (isEnding || writes.size() >= maximumBacklog)
            return false;
        writes.push_back({upload, {}});
        isStored = writes.back().isStored.get_future();
    }
    writesChanged.notify_one();
    return isStored.wait_for(timeOut) == std::future_status::ready && isStored.get();
}
