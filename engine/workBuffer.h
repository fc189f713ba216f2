// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/workMemory.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

/// An owned block of @p T whose allocation can fail without an exception. The memory is not
/// initialised, and on Linux its pages are first touched by whoever writes to them.
template <typename T> class workBuffer
{
    static_assert(std::is_trivial_v<T>, "the elements are never constructed");

public:
    workBuffer() = default;
    workBuffer(const workBuffer &) = delete;
    workBuffer &operator=(const workBuffer &) = delete;
    ~workBuffer() { free(); }

    /// Replaces the block by one of @p count elements. On failure the buffer is empty.
    [[nodiscard]] bool allocate(std::size_t count)
    {
        free();
        if (count == 0 || count > SIZE_MAX / sizeof(T))
            return false;
        bytes = count * sizeof(T);
        block = static_cast<T *>(workMemory::allocate(bytes));
        return block != nullptr;
    }

    void free() { workMemory::free(std::exchange(block, nullptr), bytes); }

    /// The first element, or null when nothing is held.
    T *data() const { return block; }

private:
    T *block = nullptr;
    std::size_t bytes = 0;
};
