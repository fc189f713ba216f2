// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/networks.h"

#include <chrono>
#include <list>
#include <map>
#include <mutex>

/// A token bucket for each account. It holds as many tokens as may be used in a period, is full at
/// first, and fills up evenly in one period. Accounts are kept in memory only. There is room for a
/// number of them; the one that has not been seen for the longest is forgotten for a new one, so
/// that nobody is shut out because others are many.
class rateLimit
{
public:
    using clock = std::chrono::steady_clock;

    /// Some 10 MB.
    static constexpr std::size_t usualRoom = 100'000;

    /// Buckets of @p tokens that fill up in @p length; no limit if @p tokens is 0.
    rateLimit(int tokens, std::chrono::seconds length, std::size_t room = usualRoom)
        : capacity(tokens),
          period(length),
          mostAccounts(room)
    {
    }

    /// Whether @p account has a token left at @p now.
    bool hasToken(const ipAddress &account, clock::time_point now = clock::now());
    /// Takes a token of @p account. False if there is none left.
    bool take(const ipAddress &account, clock::time_point now = clock::now());

    /// The seconds until one token more is there, at least 1.
    int secondsPerToken() const;

private:
    struct bucket {
        ipAddress account;
        double tokens;            ///< as of the latest look
        clock::time_point filled; ///< the time of that
    };

    /// The bucket of @p account, filled up to @p now. Needs the mutex.
    bucket &fill(const ipAddress &account, clock::time_point now);

    int capacity;
    std::chrono::seconds period;
    std::size_t mostAccounts;
    std::mutex mutex;
    std::list<bucket> buckets; ///< the one that was seen last in front
    std::map<ipAddress, std::list<bucket>::iterator> places;
};
