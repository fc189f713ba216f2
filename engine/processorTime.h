// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <functional>
#include <optional>

/// Where processor time is read. Tests bring their own.
struct processorTimeSources {
    /// In front of every file that is read.
    std::filesystem::path root = "/";
    /// Seconds of processor time that this process has used so far, all threads together.
    std::optional<double> (*ownSeconds)() = processSeconds;

    static std::optional<double> processSeconds();
};

/// Counts from its construction on how much processor time everybody else takes.
class processorTime
{
public:
    explicit processorTime(processorTimeSources from = {});

    /// Seconds of processor time, all processors together, that were not this process's: those of
    /// other processes, of the kernel's own work and, in a virtual machine, the time that the host
    /// gave to somebody else ("steal"), which is missing here just the same. Never negative; none
    /// where the system does not tell. The system counts in ticks of 10 ms for each processor, so
    /// that less than some hundredths of a second mean nothing.
    std::optional<double> othersSeconds() const;

private:
    /// All busy time and our own since some moment in the past.
    struct reading {
        std::optional<double> busy;
        std::optional<double> own;
    };
    reading read() const;

    processorTimeSources sources;
    reading start;
};

/// How many processors everybody else keeps busy while @p pass waits: 0.5 is half of one. None
/// where the system does not tell.
std::optional<double> othersLoad(const std::function<void()> &pass,
                                 const processorTimeSources &sources = {});
