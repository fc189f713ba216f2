// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runRecord.h"

std::optional<double> testRun::value() const
{
    if (end == testEnd::failed || rounds.empty() || !(average > 0))
        return std::nullopt;
    return work / static_cast<double>(average);
}
