// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

/// How often each address may do something: @c count times at once, and after that as often as
/// makes
/// @c count in @c period. Addresses are kept in memory only, and forgotten when they have been
/// quiet for a period.
class rateLimit
{
public:
    using clock = std::chrono::steady_clock;

    /// No limit if @p perPeriod is 0.
    rateLimit(int perPeriod, std::chrono::seconds length) : count(perPeriod), period(length) {}

    /// Whether @p address may do it at @p now, which counts if it may.
    bool isAllowed(const std::string &address, clock::time_point now = clock::now());

private:
    /// What an address has left, as of a time.
    struct bucket {
        double tokens;
        clock::time_point filled;
    };

    void forgetQuietOnes(clock::time_point now);

    int count;
    std::chrono::seconds period;
    std::mutex mutex;
    std::unordered_map<std::string, bucket> buckets;
};
