// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/versions.h"

#include <algorithm>

outcome<int> nextVersion(int newest, int above, qint64 now)
{
    constexpr qint64 startOf2026 = 1'767'225'600; // in seconds since 1970
    // Half a century from now on versions are simply counted; there is room for many more then.
    constexpr qint64 lastFromTheClock = 1'900'000'000;
    const qint64 seconds = now / 1'000 - startOf2026;
    const int fromTheClock =
        seconds > lastFromTheClock ? 0 : static_cast<int>(std::max<qint64>(seconds, 0));
    const int last = std::max({newest, above, builtInListVersion, fromTheClock - 1});
    if (last >= largestVersion)
        return failure(QStringLiteral("there is no version above %1").arg(last));
    return last + 1;
}
