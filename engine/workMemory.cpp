// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/workMemory.h"

#include <cstdint>
#include <cstdlib>

#ifdef __linux__
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace
{

workMemory::observer *installedObserver = nullptr;

/// The C library hands out pages of earlier blocks again, depending on what else the process has
/// allocated and freed. Dropped pages fault again, so that the cost of a first touch does not
/// depend on that history. Where it cannot be done, large blocks mostly come fresh from the system
/// anyway.
void dropPages([[maybe_unused]] void *block, [[maybe_unused]] std::size_t bytes)
{
#ifdef __linux__
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t lead = (page - reinterpret_cast<std::uintptr_t>(block) % page) % page;
    if (bytes < lead + page)
        return;
    madvise(static_cast<char *>(block) + lead, (bytes - lead) / page * page, MADV_DONTNEED);
#endif
}

} // namespace

void workMemory::setObserver(observer *target)
{
    installedObserver = target;
}

void *workMemory::allocate(std::size_t bytes)
{
    if (installedObserver && !installedObserver->mayAllocate(bytes))
        return nullptr;
    return std::malloc(bytes);
}

void *workMemory::allocateUntouched(std::size_t bytes)
{
    void *block = allocate(bytes);
    if (block)
        dropPages(block, bytes);
    return block;
}

void workMemory::free(void *block)
{
    if (block && installedObserver)
        installedObserver->freed();
    std::free(block);
}
