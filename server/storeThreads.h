// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/resultStore.h"

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

/// Two threads with a database connection each, one that reads and one that writes, for a server
/// whose own threads must not wait.
///
/// Both take everything that is waiting at once. One look at the newest version answers all who
/// have asked before it began, and uploads are committed in batches: a disk makes some hundred
/// transactions a second durable, however large they are.
///
/// Whoever asks gets a call, once, on one of the two threads or, when the backlog is full, at once.
class storeThreads
{
public:
    /// The longest backlog of reads and of writes; what comes beyond it fails.
    static constexpr std::size_t maximumBacklog = 2'000;

    /// What a thread does with the database.
    enum class work { reading, writing };
    /// Called on either thread each time that the database has failed.
    using failureTaker = std::function<void(work)>;

    explicit storeThreads(const databaseAddress &address, failureTaker failed = {});
    storeThreads(const storeThreads &) = delete;
    storeThreads &operator=(const storeThreads &) = delete;
    /// Works off the backlog, then ends the threads, however long that takes.
    ~storeThreads();

    /// Works off the backlog and ends the threads. False if that has not been done after @p
    /// longest, as when the database does not answer.
    bool end(std::chrono::milliseconds longest);

    /// Gets nothing if the database does not answer.
    using versionTaker = std::function<void(std::optional<int>)>;
    using countTaker = std::function<void(std::optional<uploadCounts>)>;
    using listTaker = std::function<void(std::optional<storedList>)>;
    /// Gets whether it has worked.
    using resultTaker = std::function<void(bool)>;

    void newestVersion(versionTaker take);
    void newestList(bool isBeta, listTaker take);
    /// How many uploads are in each state.
    void countUploads(countTaker take);
    /// True when @p upload is durable.
    void add(storedUpload upload, resultTaker take);
    /// Whether an upload could be stored now, or a moment ago.
    void checkWritable(resultTaker take);

    /// How many wait for the database.
    struct backlog {
        std::size_t reads = 0;
        std::size_t writes = 0;
        std::size_t checks = 0;
    };
    backlog waiting();

private:
    using clock = std::chrono::steady_clock;

    /// The newest lists.
    struct newestLists {
        int version = 0;
        storedList normal;
        storedList beta;
    };
    /// Gets nothing if the database does not answer.
    using readJob = std::function<void(const newestLists *, resultStore *)>;
    struct writeJob {
        storedUpload upload;
        resultTaker take;
        clock::time_point since;
    };

    void read(readJob job);
    void serveReads();
    void serveWrites();
    void store(resultStore &to, std::vector<writeJob> batch);
    /// Does @p what on @p store. If that fails it is tried once more on a new connection: the
    /// database may have been restarted.
    template <typename Work>
    auto twice(resultStore &store, work kind, const Work &what) -> decltype(what());
    void hasEnded();

    databaseAddress place;
    failureTaker hasFailed;
    std::mutex mutex;
    std::condition_variable readsChanged;
    std::condition_variable writesChanged;
    std::condition_variable ended;
    std::vector<readJob> reads;
    std::vector<writeJob> writes;
    std::vector<resultTaker> checks;
    bool isEnding = false;
    int running = 0;
    std::vector<std::thread> threads;
};
