// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "standaloneLoops.h"

#include <functional>

/// A standalone loop with the data that its workload has after set-up, on the standard frame.
struct plainLoop {
    /// Done by one run, counted as the workload counts it.
    double work = 0;
    /// Untimed, before each run. May be empty.
    std::function<void()> prepare;
    /// The timed part. Empty if the data could not be had.
    std::function<void()> run;
};

namespace plainLoops
{

constexpr int width = 3820;
constexpr int height = 2160;

plainLoop mandel(keeping kept);
plainLoop shellSort(keeping kept);
plainLoop zlib(keeping kept);
plainLoop colors(keeping kept);

} // namespace plainLoops
