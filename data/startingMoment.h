// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/machineContext.h"
#include "engine/processorTime.h"

#include <filesystem>
#include <functional>

/// Where it is read what a machine is doing. Tests bring their own.
struct startingMomentSources {
    /// In front of every file that is read.
    std::filesystem::path root = "/";
    processorTimeSources time;
    /// Waits for as long as others are watched.
    std::function<void()> pass = someTicksPass;

    static void someTicksPass();
};

/// What a machine of @p threads processors is doing before a measurement. The load average still
/// counts what ended a minute ago, a run of this program for one: where it is that of a busy
/// machine, what others use is looked at for half a second.
machineMoment readStartingMoment(int threads, const startingMomentSources &sources = {});
