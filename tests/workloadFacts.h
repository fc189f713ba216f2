// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <array>
#include <span>

/// What one unit of a workload's result, a pixel or a line, asks of a processor: counted, or worked
/// out from the loop. docs/reference-model.md says how. All 0 where nobody has counted.
struct workloadDemand {
    double instructions = 0;
    double loads = 0;
    /// The longest chain of operations that wait for each other: multiplications, additions, and
    /// cycles of integer operations, which take as long on all cores.
    double chainMultiplications = 0;
    double chainAdditions = 0;
    double chainCycles = 0;
    double divisions = 0;
    double roots = 0;
    double branchMisses = 0;
    /// Pages of memory that are touched for the first time.
    double newPages = 0;
    /// Bytes moved between memory and the caches.
    double bytes = 0;
};

/// How often a kind of instruction stands in a loop.
struct instructionCount {
    const char *mnemonics = nullptr; ///< regular expression; null for an entry that is not used
    int least = 0;
    int most = 0; ///< -1 stands for any number of times
};

namespace mnemonics
{
inline constexpr const char *conversions = "v?cvt.*";
inline constexpr const char *singles = "v?(add|sub|mul|div|sqrt)ss";
inline constexpr const char *doubles = "v?(add|sub|mul|div|sqrt)sd";
} // namespace mnemonics

/// What an innermost loop must hold in the machine code for x86-64, whichever compiler made it.
struct machineLoop {
    const char *function; ///< a part of its function's name
    /// The loop is known by holding the first, and must hold the others too.
    std::array<instructionCount, 5> counts;
};

/// What the largest innermost loop of a function may read for each word or pixel that it writes:
/// what the work is about, and nothing that was put aside in memory.
struct machineReads {
    const char *function;
    int mostLoadsPerStore;
};

/// What the machine code of a workload's source must hold to be the work that was asked for.
struct machineCode {
    const char *source; ///< its name without folder and suffix
    std::span<const machineLoop> loops;
    std::span<const machineReads> reads = {};
};

/// How the timed loop is shared out to the OpenMP threads, one of them in the single-core form.
enum class loopSchedule { none, fixed, dynamic };

/// What people, the model of machines and the tests are told about a workload.
struct workloadFacts {
    /// Of its throughput: M stands for a million, K for a thousand.
    const char *unit;
    const char *description; ///< what it does, and what it shows of a processor: two sentences
    workloadDemand demand;
    loopSchedule schedule;
    const machineCode &code;
};
