// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rateLimit.h"

#include <algorithm>

namespace
{

/// Some 10 MB. When more addresses than that send requests within a period, new ones have to wait.
constexpr std::size_t maximumAddresses = 100'000;

} // namespace

bool rateLimit::isAllowed(const std::string &address, clock::time_point now)
{
    if (capacity <= 0)
        return true;
    const std::lock_guard lock(mutex);
    if (buckets.size() >= maximumAddresses && buckets.find(address) == buckets.end()) {
        forgetFullOnes(now);
        if (buckets.size() >= maximumAddresses)
            return false;
    }
    const auto full = static_cast<double>(capacity);
    bucket &own = buckets.try_emplace(address, bucket{full, now}).first->second;
    const std::chrono::duration<double> passed = now - own.filled;
    own.tokens = std::min(full, own.tokens + full * (passed / period));
    own.filled = now;
    if (own.tokens < 1)
        return false;
    own.tokens -= 1;
    return true;
}

void rateLimit::forgetFullOnes(clock::time_point now)
{
    for (auto entry = buckets.begin(); entry != buckets.end();) {
        if (now - entry->second.filled >= period)
            entry = buckets.erase(entry);
        else
            ++entry;
    }
}
