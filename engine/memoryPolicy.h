// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <iosfwd>

/// What the whole process does with memory, so that a round costs the same whatever ran before it
/// and however the system is set up. It is for the blocks that the toolkit allocates inside a timed
/// run; those of the workloads themselves come from workMemory.
namespace memoryPolicy
{

/// From now on every large block of the C library is fresh from the system, and no page is larger
/// than the ordinary one. As far as the system lets us ask for it: Linux, the GNU C library.
void apply();

/// Whether a large block really gets pages of the ordinary size. True where nobody can tell.
bool hasOrdinaryPages();

/// The same of the block at @p block, from the list of mappings @p smaps (proc(5), /proc/PID/smaps)
/// and an ordinary size of @p pageSize bytes.
bool hasOrdinaryPages(const void *block, std::istream &smaps, std::size_t pageSize);

} // namespace memoryPolicy
