// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storeThreads.h"

#include "server/log.h"

namespace
{

/// So many uploads share a transaction at most, so that none waits for long.
constexpr std::size_t largestBatch = 500;

/// After that, whoever waits is told that the database does not answer.
constexpr auto longestWait = std::chrono::seconds(15);

/// Stores @p uploads, on a new connection if the first one fails: it may be that of a database that
/// has been restarted.
bool addTo(resultStore &store, const QVector<storedUpload> &uploads)
{
    if (store.open() && store.add(uploads))
        return true;
    writeLog(QStringLiteral("storing again after: %1").arg(store.error()));
    store.close();
    return store.open() && store.add(uploads);
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
        const bool areStored = addTo(store, uploads);
        for (writeJob &job : batch) {
            // One that the database does not take must not cost the others.
            const bool isStored = areStored || (batch.size() > 1 && addTo(store, {job.upload}));
            if (!isStored)
                writeLog(QStringLiteral("not stored: %1").arg(store.error()));
            job.isStored.set_value(isStored);
        }
        lock.lock();
    }
}

template <typename Result>
std::optional<Result> storeThreads::read(std::optional<Result> (*operation)(resultStore &, bool),
                                         bool argument)
{
    // Shared, because whoever waits may have gone when the answer comes.
    const auto promise = std::make_shared<std::promise<std::optional<Result>>>();
    std::future<std::optional<Result>> result = promise->get_future();
    {
        const std::lock_guard lock(mutex);
        if (isEnding || reads.size() >= longestQueue)
            return std::nullopt;
        reads.emplace_back([promise, operation, argument](resultStore *store) {
            std::optional<Result> found = store ? operation(*store, argument) : std::nullopt;
            if (store && !found) {
                store->close();
                if (store->open())
                    found = operation(*store, argument);
            }
            promise->set_value(found);
        });
    }
    readsChanged.notify_one();
    return result.wait_for(longestWait) == std::future_status::ready ? result.get() : std::nullopt;
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
        if (isEnding || writes.size() >= longestQueue)
            return false;
        writes.push_back({upload, {}});
        isStored = writes.back().isStored.get_future();
    }
    writesChanged.notify_one();
    return isStored.wait_for(longestWait) == std::future_status::ready && isStored.get();
}
