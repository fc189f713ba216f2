// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <httplib.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <utility>

/// A thread pool that grows with its tasks up to a limit; threads that are idle for a while end.
/// Tasks beyond the limit wait.
class growingPool : public httplib::TaskQueue
{
public:
    /// void or bool, depending on the library's version.
    using enqueued = decltype(std::declval<httplib::TaskQueue &>().enqueue({}));

    explicit growingPool(int mostThreads) : limit(mostThreads) {}

    enqueued enqueue(std::function<void()> task) override;
    /// Finishes all tasks, then ends the threads.
    void shutdown() override;

private:
    void work();

    int limit;
    std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::function<void()>> tasks;
    int threads = 0;
    int idle = 0;
    bool isEnding = false;
};
