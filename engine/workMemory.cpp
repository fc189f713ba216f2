// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/workMemory.h"

// The address sanitizer watches over the ends of its own blocks only.
#ifdef __SANITIZE_ADDRESS__
#define FENNICK_OWN_PAGES 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define FENNICK_OWN_PAGES 0
#endif
#endif
#if defined(__linux__) && !defined(FENNICK_OWN_PAGES)
#define FENNICK_OWN_PAGES 1
#endif

#if FENNICK_OWN_PAGES
#include <sys/mman.h>
#else
#include <cstdlib>
#endif

namespace
{

workMemory::observer *installedObserver = nullptr;

#if FENNICK_OWN_PAGES

void *takeBlock(std::size_t bytes)
{
    void *block = mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return block == MAP_FAILED ? nullptr : block;
}

void giveBlock(void *block, std::size_t bytes)
{
    munmap(block, bytes);
}

#else

/// Elsewhere large blocks come fresh from the system as a rule.
void *takeBlock(std::size_t bytes)
{
    return std::malloc(bytes);
}

void giveBlock(void *block, std::size_t)
{
    std::free(block);
}

#endif

} // namespace

void workMemory::setObserver(observer *target)
{
    installedObserver = target;
}

void *workMemory::allocate(std::size_t bytes)
{
    if (installedObserver && !installedObserver->mayAllocate(bytes))
        return nullptr;
    return takeBlock(bytes);
}

void workMemory::free(void *block, std::size_t bytes)
{
    if (!block)
        return;
    if (installedObserver)
        installedObserver->freed();
    giveBlock(block, bytes);
}
