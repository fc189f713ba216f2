// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// A few threads with one database connection each, on which the many threads of the web server
/// wait.
///
/// Uploads go through one thread, which commits its whole backlog in one transaction, a batch: a
/// disk makes some hundred transactions a second durable, however large they are.
class storeThreads
{
public:
    /// The longest backlog of reads and of writes; requests beyond it are turned away.
    static constexpr std::size_t maximumBacklog = 2'000;

    storeThreads(const databaseAddress &address, int readers);
    storeThreads(const storeThreads &) = delete;
    storeThreads &operator=(const storeThreads &) = delete;
    /// Works off the backlog, then ends the threads.
    ~storeThreads();

    /// The newest version; nothing if the database does not answer.
    std::optional<int> newestVersion();
    std::optional<storedList> newestList(bool isBeta);
    /// True when @p upload is durable.
    bool add(const storedUpload &upload);

private:
    using readJob = std::function<void(resultStore *)>;
    struct writeJob {
        storedUpload upload;
        std::promise<bool> isStored;
    };

    /// The result of @p operation on one of the readers' stores, or nothing.
    template <typename Result>
    std::optional<Result> read(outcome<Result> (*operation)(resultStore &, bool), bool argument);
    void serveReads();
    void serveWrites();

    databaseAddress place;
    std::mutex mutex;
    std::condition_variable readsChanged;
    std::condition_variable writesChanged;
    std::deque<readJob> reads;
    std::deque<writeJob> writes;
    bool isEnding = false;
    std::vector<std::thread> threads;
};
