// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/storeThreads.h"

#include "server/log.h"

#include <algorithm>
#include <iterator>

namespace
{

/// The most uploads in one transaction, so that none waits for long.
constexpr std::ptrdiff_t largestBatch = 500;

/// Whoever has waited so long has been told that the database does not answer.
constexpr auto longestWait = std::chrono::seconds(6);

/// So long an answer about writing holds for others too: each try makes the disk write.
constexpr auto checkAge = std::chrono::seconds(1);

} // namespace

template <typename Work>
auto storeThreads::twice(resultStore &store, work kind, const Work &what) -> decltype(what())
{
    auto done = store.open().and_then(what);
    if (done)
        return done;
    hasFailed(kind);
    writeLog(QStringLiteral("trying again after: %1").arg(done.error()));
    store.close();
    done = store.open().and_then(what);
    if (!done)
        hasFailed(kind);
    return done;
}

storeThreads::storeThreads(const databaseAddress &address, failureTaker failed)
    : place(address),
      hasFailed(failed ? std::move(failed) : [](work) {}),
      running(2)
{
    threads.emplace_back([this] { serveReads(); });
    threads.emplace_back([this] { serveWrites(); });
}

storeThreads::~storeThreads()
{
    end(std::chrono::milliseconds::max());
}

bool storeThreads::end(std::chrono::milliseconds longest)
{
    {
        std::unique_lock lock(mutex);
        isEnding = true;
        readsChanged.notify_all();
        writesChanged.notify_all();
        const auto haveEnded = [this] { return running == 0; };
        if (longest == std::chrono::milliseconds::max())
            ended.wait(lock, haveEnded);
        else if (!ended.wait_for(lock, longest, haveEnded))
            return false;
    }
    for (std::thread &thread : threads)
        thread.join();
    threads.clear();
    return true;
}

void storeThreads::hasEnded()
{
    const std::lock_guard lock(mutex);
    --running;
    ended.notify_all();
}

void storeThreads::read(readJob job)
{
    {
        const std::lock_guard lock(mutex);
        if (!isEnding && reads.size() < maximumBacklog) {
            reads.push_back(std::move(job));
            readsChanged.notify_one();
            return;
        }
    }
    job(nullptr, nullptr);
}

void storeThreads::newestVersion(versionTaker take)
{
    read([take = std::move(take)](const newestLists *found, resultStore *) {
        take(found ? std::make_optional(found->version) : std::nullopt);
    });
}

void storeThreads::newestList(bool isBeta, listTaker take)
{
    read([isBeta, take = std::move(take)](const newestLists *found, resultStore *) {
        take(found ? std::make_optional(isBeta ? found->beta : found->normal) : std::nullopt);
    });
}

void storeThreads::countUploads(countTaker take)
{
    read([this, take = std::move(take)](const newestLists *, resultStore *from) {
        outcome<uploadCounts> counts = failure(QString());
        if (from)
            counts = twice(*from, work::reading, [from] { return from->countUploads(); });
        take(counts ? std::make_optional(*counts) : std::nullopt);
    });
}

storeThreads::backlog storeThreads::waiting()
{
    const std::lock_guard lock(mutex);
    return {reads.size(), writes.size(), checks.size()};
}

void storeThreads::add(storedUpload upload, resultTaker take)
{
    {
        const std::lock_guard lock(mutex);
        if (!isEnding && writes.size() < maximumBacklog) {
            writes.push_back({std::move(upload), std::move(take), clock::now()});
            writesChanged.notify_one();
            return;
        }
    }
    take(false);
}

void storeThreads::checkWritable(resultTaker take)
{
    {
        const std::lock_guard lock(mutex);
        if (!isEnding && checks.size() < maximumBacklog) {
            checks.push_back(std::move(take));
            writesChanged.notify_one();
            return;
        }
    }
    take(false);
}

void storeThreads::serveReads()
{
    resultStore store(place);
    newestLists newest;
    // The lists are read only when there are new ones. Each is at least as new as the version.
    const auto refresh = [&]() -> outcome<void> {
        return store.newestVersion().and_then([&](int version) -> outcome<void> {
            if (version == newest.version)
                return {};
            auto normal = store.newestList(false);
            auto beta = store.newestList(true);
            if (!normal || !beta)
                return failure(normal ? beta.error() : normal.error());
            newest = {version, *normal, *beta};
            return {};
        });
    };
    std::unique_lock lock(mutex);
    while (true) {
        readsChanged.wait(lock, [this] { return isEnding || !reads.empty(); });
        if (reads.empty())
            break;
        std::vector<readJob> batch;
        batch.swap(reads);
        lock.unlock();
        const outcome<void> isRead = twice(store, work::reading, refresh);
        if (!isRead)
            writeLog(QStringLiteral("not read: %1").arg(isRead.error()));
        for (const readJob &job : batch)
            isRead ? job(&newest, &store) : job(nullptr, nullptr);
        lock.lock();
    }
    lock.unlock();
    store.close();
    hasEnded();
}

void storeThreads::serveWrites()
{
    resultStore to(place);
    outcome<void> isWritable;
    clock::time_point nextCheck;
    std::unique_lock lock(mutex);
    while (true) {
        writesChanged.wait(lock, [this] { return isEnding || !writes.empty() || !checks.empty(); });
        if (writes.empty() && checks.empty())
            break;
        const auto end =
            writes.begin() + std::min<std::ptrdiff_t>(largestBatch, std::ssize(writes));
        std::vector<writeJob> batch(std::make_move_iterator(writes.begin()),
                                    std::make_move_iterator(end));
        writes.erase(writes.begin(), end);
        std::vector<resultTaker> asked;
        asked.swap(checks);
        lock.unlock();
        store(to, std::move(batch));
        if (!asked.empty()) {
            if (clock::now() >= nextCheck) {
                isWritable = twice(to, work::writing, [&to] { return to.checkWritable(); });
                nextCheck = clock::now() + checkAge;
                if (!isWritable)
                    writeLog(QStringLiteral("no upload can be stored: %1").arg(isWritable.error()));
            }
            for (const resultTaker &take : asked)
                take(isWritable.has_value());
        }
        lock.lock();
    }
    lock.unlock();
    to.close();
    hasEnded();
}

void storeThreads::store(resultStore &to, std::vector<writeJob> batch)
{
    std::erase_if(batch, [](const writeJob &job) {
        const bool isTooLate = clock::now() - job.since > longestWait;
        if (isTooLate)
            job.take(false);
        return isTooLate;
    });
    if (batch.empty())
        return;
    QVector<storedUpload> uploads;
    for (const writeJob &job : batch)
        uploads.append(job.upload);
    const outcome<void> areStored = twice(to, work::writing, [&] { return to.add(uploads); });
    if (!areStored && batch.size() > 1) {
        // One that the database refuses must not cost the rest of its batch.
        for (writeJob &job : batch)
            store(to, {std::move(job)});
        return;
    }
    if (!areStored)
        writeLog(QStringLiteral("not stored: %1").arg(areStored.error()));
    for (const writeJob &job : batch)
        job.take(areStored.has_value());
}
