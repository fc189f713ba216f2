// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <type_traits>

/// From here on @p value may be anything, as far as the compiler knows, although nothing changes
/// it. Part of the work of a round gives the same result every time, and one compiler would take it
/// out of its loop where the next one does not; what is made of an opaque value is made anew. The
/// value stays in its register, and no instruction is added, where the compiler understands that.
template <typename T> Q_ALWAYS_INLINE void makeOpaque(T &value)
{
    static_assert(std::is_arithmetic_v<T>);
#if defined(__GNUC__) && defined(__x86_64__)
    if constexpr (std::is_floating_point_v<T>)
        asm volatile("" : "+x"(value));
    else
        asm volatile("" : "+r"(value));
#elif defined(__GNUC__) && defined(__aarch64__)
    if constexpr (std::is_floating_point_v<T>)
        asm volatile("" : "+w"(value));
    else
        asm volatile("" : "+r"(value));
#else
    volatile T copy = value;
    value = copy;
#endif
}
