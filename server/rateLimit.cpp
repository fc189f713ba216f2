// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rateLimit.h"

#include <algorithm>
#include <cmath>

bool rateLimit::hasToken(const ipAddress &account, clock::time_point now)
{
    if (capacity <= 0)
        return true;
    const std::lock_guard lock(mutex);
    return fill(account, now).tokens >= 1;
}

bool rateLimit::take(const ipAddress &account, clock::time_point now)
{
    if (capacity <= 0)
        return true;
    const std::lock_guard lock(mutex);
    bucket &own = fill(account, now);
    if (own.tokens < 1)
        return false;
    own.tokens -= 1;
    return true;
}

int rateLimit::secondsPerToken() const
{
    if (capacity <= 0)
        return 1;
    return std::max(1, static_cast<int>(std::ceil(static_cast<double>(period.count()) / capacity)));
}

rateLimit::bucket &rateLimit::fill(const ipAddress &account, clock::time_point now)
{
    const auto full = static_cast<double>(capacity);
    const auto found = places.find(account);
    if (found == places.end()) {
        buckets.push_front({account, full, now});
        places.emplace(account, buckets.begin());
        if (buckets.size() > mostAccounts) {
            places.erase(buckets.back().account);
            buckets.pop_back();
        }
        return buckets.front();
    }
    buckets.splice(buckets.begin(), buckets, found->second);
    bucket &own = buckets.front();
    const std::chrono::duration<double> passed = now - own.filled;
    own.tokens = std::min(full, own.tokens + full * (passed / period));
    own.filled = now;
    return own;
}
