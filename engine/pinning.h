// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <filesystem>
#include <optional>
#include <vector>

/// The numbers of the processors that the calling thread may run on, ascending; empty where the
/// system does not tell.
std::vector<int> allowedProcessors();

/// The one of @p allowed with the highest clock, as the files below @p root have it, and the lowest
/// number among equals. A processor whose clock is not known counts as the slowest. None if nothing
/// is allowed.
std::optional<int> fastestProcessor(const std::vector<int> &allowed,
                                    const std::filesystem::path &root = "/");

/// Keeps the calling thread on one processor for the life of this object, which must end on the
/// same thread.
///
/// A new thread gets the processors of the one that makes it, and keeps them. So that the threads
/// of a multi-core test are never kept on one processor, whoever pins must see to three things:
/// - the first pin comes after the OpenMP library has counted the processors, which it may do as
/// late
///   as in the first parallel region: open one of all threads before;
/// - no parallel region of more than one thread, and no thread, begins while a thread is pinned;
/// - the number of OpenMP's threads is not raised while it is.
/// A single-core test keeps to this, since its region is of one thread.
class pinnedThread
{
public:
    /// Pins to @p processor; see isPinned.
    explicit pinnedThread(int processor);
    pinnedThread(const pinnedThread &) = delete;
    pinnedThread &operator=(const pinnedThread &) = delete;
    /// Gives the thread its earlier processors back.
    ~pinnedThread();

    /// Whether it worked, or why not. Nothing has changed then.
    const outcome<void> &isPinned() const { return pinned; }

private:
    std::vector<int> before;
    outcome<void> pinned;
};
