// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

/// The version of the list inside the programs.
constexpr int builtInListVersion = 1010;
/// The highest version that a list may have; the programs read up to twice as much.
constexpr int largestVersion = 2'000'000'000;

/// The version of the next list: above @p newest, above @p above, and at least the number of
/// seconds since the start of 2026 at @p now, in milliseconds since 1970. So a version is never
/// given twice, even if the database that knew of it has been replaced by an older backup.
outcome<int> nextVersion(int newest, int above, qint64 now);
