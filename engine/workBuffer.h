// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
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
    [[nodiscard]] bool allocate(std::size_t count)
    {
        free();
        if (count == 0 || count > SIZE_MAX / sizeof(T))
            return false;
        block = static_cast<T *>(std::malloc(count * sizeof(T)));
        return block != nullptr;
    }

    void free() { std::free(std::exchange(block, nullptr)); }

    /// The first element, or null when nothing is held.
    T *data() const { return block; }

private:
    T *block = nullptr;
};
