// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <unordered_map>

/// A token bucket for each address. It holds as many tokens as may be used in a period, is full at
/// first, and fills up evenly in one period. Addresses are kept in memory only, and may be
/// forgotten after a period without a request.
class rateLimit
{
public:
    using clock = std::chrono::steady_clock;

    /// Buckets of @p tokens that fill up in @p length; no limit if @p tokens is 0.
    rateLimit(int tokens, std::chrono::seconds length) : capacity(tokens), period(length) {}

    /// Takes a token of @p address at @p now. False if there is none left.
    bool isAllowed(const std::string &address, clock::time_point now = clock::now());

private:
    struct bucket {
        double tokens;            ///< as of the latest request
        clock::time_point filled; ///< the time of that request
    };

    void forgetFullOnes(clock::time_point now);

    int capacity;
    std::chrono::seconds period;
    std::mutex mutex;
    std::unordered_map<std::string, bucket> buckets;
};
