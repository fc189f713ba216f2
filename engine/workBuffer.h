// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/workMemory.h"

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

/// An owned block of @p T whose allocation can fail without an exception. The memory is not
/// initialised.
template <typename T> class workBuffer
{
    static_assert(std::is_trivial_v<T>, "the elements are never constructed");

public:
    workBuffer() = default;
    workBuffer(const workBuffer &) = delete;
    workBuffer &operator=(const workBuffer &) = delete;
    ~workBuffer() { free(); }

    /// Replaces the block by one of @p count elements. On failure the buffer is empty.
    [[nodiscard]] bool allocate(std::size_t count) { return take(count, workMemory::allocate); }
    /// The same in pages that are first touched by whoever writes to them.
    [[nodiscard]] bool allocateUntouched(std::size_t count)
    {
        return take(count, workMemory::allocateUntouched);
    }

    void free() { workMemory::free(std::exchange(block, nullptr)); }

    /// The first element, or null when nothing is held.
    T *data() const { return block; }

private:
    bool take(std::size_t count, void *(*source)(std::size_t))
    {
        free();
        if (count == 0 || count > SIZE_MAX / sizeof(T))
            return false;
        block = static_cast<T *>(source(count * sizeof(T)));
        return block != nullptr;
    }

    T *block = nullptr;
};
