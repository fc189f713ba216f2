// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/verdict.h"
#include "engine/roundSpan.h"

#include <span>

/// What the rounds of one test say about themselves, whatever else is known of the run.

/// Which rounds were interrupted for minutes, in the order of @p rounds: the machine slept, its
/// clock was set forward, or the program was halted.
std::vector<bool> suspendedRounds(std::span<const roundSpan> rounds);

/// The rounds' seconds on the fine clock, without suspended ones.
std::vector<double> countedSpans(std::span<const roundSpan> rounds);

/// Below this many rounds nothing is said about how they differ.
constexpr std::size_t fewestRounds = 5;

/// Slow first rounds, outliers, a trend, clocks that disagree, suspended rounds.
std::vector<remark> remarksOn(std::span<const roundSpan> rounds);
