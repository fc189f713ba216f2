// SPDX-License-Identifier: GPL-3.0-or-later
#include "loopWatch.h"

#include <dlfcn.h>

#include <atomic>
#include <cstdint>

namespace
{

std::atomic<loopWatch::schedule> kind = loopWatch::none;
std::atomic<long> chunkSize = 0;

void note(loopWatch::schedule asked, long chunk)
{
    kind = asked;
    chunkSize = chunk;
}

/// The runtime's own function of the type of @p ours.
template <typename function> function *next(const char *name, function *)
{
    return reinterpret_cast<function *>(dlsym(RTLD_NEXT, name));
}

/// The numbers of LLVM's runtime, without the bits that say how strictly chunks follow each other.
loopWatch::schedule scheduleOf(std::int32_t number)
{
    switch (number & 0xFFFFFFF) {
    case 33:
        return loopWatch::fixedChunks;
    case 34:
        return loopWatch::fixed;
    case 35:
        return loopWatch::dynamic;
    default:
        return loopWatch::other;
    }
}

} // namespace

void loopWatch::forget()
{
    note(none, 0);
}

loopWatch::request loopWatch::last()
{
    return {kind, chunkSize};
}

// What g++ calls for loops that are not static: at the start of a loop inside a region, or for
// region and loop at once.

#define FENNICK_WATCH_LOOP(name, asked)                                                            \
    extern "C" bool name(long start, long end, long step, long chunk, long *from, long *to)        \
    {                                                                                              \
        note(asked, chunk);                                                                        \
        return next(#name, name)(start, end, step, chunk, from, to);                               \
    }
#define FENNICK_WATCH_REGION(name, asked)                                                          \
    extern "C" void name(void (*body)(void *), void *data, unsigned threads, long start, long end, \
                         long step, long chunk, unsigned flags)                                    \
    {                                                                                              \
        note(asked, chunk);                                                                        \
        next(#name, name)(body, data, threads, start, end, step, chunk, flags);                    \
    }

FENNICK_WATCH_LOOP(GOMP_loop_dynamic_start, loopWatch::dynamic)
FENNICK_WATCH_LOOP(GOMP_loop_nonmonotonic_dynamic_start, loopWatch::dynamic)
FENNICK_WATCH_LOOP(GOMP_loop_guided_start, loopWatch::other)
FENNICK_WATCH_LOOP(GOMP_loop_nonmonotonic_guided_start, loopWatch::other)
FENNICK_WATCH_REGION(GOMP_parallel_loop_dynamic, loopWatch::dynamic)
FENNICK_WATCH_REGION(GOMP_parallel_loop_nonmonotonic_dynamic, loopWatch::dynamic)
FENNICK_WATCH_REGION(GOMP_parallel_loop_guided, loopWatch::other)
FENNICK_WATCH_REGION(GOMP_parallel_loop_nonmonotonic_guided, loopWatch::other)

// What clang++ calls, for loops that count an int. The names are those of its library.
// NOLINTBEGIN(bugprone-reserved-identifier)

extern "C" void __kmpc_dispatch_init_4(void *place, std::int32_t thread, std::int32_t number,
                                       std::int32_t first, std::int32_t last, std::int32_t step,
                                       std::int32_t chunk)
{
    note(scheduleOf(number), chunk);
    next("__kmpc_dispatch_init_4", __kmpc_dispatch_init_4)(place, thread, number, first, last, step,
                                                           chunk);
}

extern "C" void __kmpc_for_static_init_4(void *place, std::int32_t thread, std::int32_t number,
                                         std::int32_t *isLast, std::int32_t *first,
                                         std::int32_t *last, std::int32_t *stride,
                                         std::int32_t step, std::int32_t chunk)
{
    note(scheduleOf(number), chunk);
    next("__kmpc_for_static_init_4", __kmpc_for_static_init_4)(place, thread, number, isLast, first,
                                                               last, stride, step, chunk);
}

// NOLINTEND(bugprone-reserved-identifier)
