// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/jsonFields.h"

/// What the writer and the reader of runs must agree on; docs/run.schema.json says the same.
namespace runJson
{

constexpr auto kind = "fennick-run";

/// In the order of the enumerations that they stand for.
constexpr const char *wantedWords[] = {"full-run", "some-tests"};
constexpr const char *powerWords[] = {"mains", "battery"};
constexpr const char *endWords[] = {"complete", "stopped", "failed"};
constexpr const char *framesWords[] = {"right", "wrong", "cannot-tell"};

/// Characters.
constexpr int longestName = 100;
constexpr int longestText = 4096;

constexpr int mostTests = 10'000;
constexpr int mostRounds = 1'000'000; ///< of all tests of a run
constexpr int mostVariables = 100;    ///< of the environment

constexpr numberRange amounts{0, 1e15};
constexpr numberRange counts{0, 2147483647};
constexpr numberRange bytes{0, 9007199254740992};
constexpr numberRange nanoseconds{0, 9007199254740992}; ///< what a double holds exactly: 104 days
constexpr numberRange officialSeconds{-1e9, 1e9};       ///< negative where the clock was set back
constexpr numberRange degrees{-300, 10000};

} // namespace runJson
