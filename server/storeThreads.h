// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

/// A few threads with a connection each, on which the many threads of the web server wait.
///
/// Uploads go through one thread, which stores all that have come in the meantime in one
/// transaction: a disk makes some hundred transactions durable in a second, whatever is in them.
class storeThreads
{
public:
    /// At most this many requests wait; more are turned away.
    static constexpr std::size_t longestQueue = 2'000;

    storeThreads(const databaseAddress &address, int readers);
    storeThreads(const storeThreads &) = delete;
    storeThreads &operator=(const storeThreads &) = delete;
    /// Does what is waiting, then ends the threads.
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
    std::optional<Result> read(std::optional<Result> (*operation)(resultStore &, bool),
                               bool argument);
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
