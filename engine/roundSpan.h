// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <chrono>

/// How long one round took, on both clocks.
struct roundSpan {
    /// Seconds on the clock of one millisecond, which results are made with.
    float official = 0;
    /// The same on the clock that is never set. It is read outside the official span, and so holds
    /// the two readings of the official clock too.
    std::chrono::nanoseconds fine = {};
};
