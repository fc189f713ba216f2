// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/growingPool.h"

#include <chrono>
#include <system_error>
#include <thread>

namespace
{

constexpr auto idleTimeOut = std::chrono::seconds(5);

} // namespace

growingPool::enqueued growingPool::enqueue(std::function<void()> task)
{
    const std::lock_guard lock(mutex);
    tasks.push_back(std::move(task));
    if (idle >= static_cast<int>(tasks.size()) || threads >= limit) {
        changed.notify_all();
        return static_cast<enqueued>(true);
    }
    try {
        std::thread([this] { work(); }).detach();
        ++threads;
    } catch (const std::system_error &) {
        changed.notify_all(); // the system's own limit is reached
    }
    return static_cast<enqueued>(true);
}

void growingPool::work()
{
    std::unique_lock lock(mutex);
    while (true) {
        ++idle;
        changed.wait_for(lock, idleTimeOut, [this] { return isEnding || !tasks.empty(); });
        --idle;
        if (tasks.empty())
            break;
        const std::function<void()> task = std::move(tasks.front());
        tasks.pop_front();
        lock.unlock();
        task();
        lock.lock();
    }
    --threads;
    changed.notify_all();
}

void growingPool::shutdown()
{
    std::unique_lock lock(mutex);
    isEnding = true;
    changed.notify_all();
    changed.wait(lock, [this] { return threads == 0 && tasks.empty(); });
}
