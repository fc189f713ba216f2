// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/testBase.h"

#include <algorithm>
#include <cstddef>
#include <vector>

using frame = std::vector<quint32>;

constexpr quint32 black = 0xFF000000U;

/// Runs @p test the way the runner does, @p times times.
inline void runRounds(testBase &test, int times)
{
    for (int i = 0; i < times; ++i) {
        test.preRun();
        test.run();
        test.postRun();
    }
}

inline frame frameOf(const testBase &test)
{
    const auto count =
        static_cast<std::size_t>(test.getWidth()) * static_cast<std::size_t>(test.getHeight());
    return frame(test.getBuffer(), test.getBuffer() + count);
}

inline frame blackFrame(int width, int height)
{
    return frame(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), black);
}

/// Sizes at which a loop over rows, columns or dots goes wrong first.
struct frameSize {
    int width;
    int height;
};
constexpr frameSize oddSizes[] = {{1, 1}, {3, 2}, {319, 239}, {321, 241}, {1, 5000}, {5000, 1}};

/// A colour that no test draws.
constexpr quint32 mark = 0xFF13579BU;

inline void paint(testBase &test, quint32 colour)
{
    std::fill_n(test.getBuffer(), test.getWidth() * test.getHeight(), colour);
}

inline bool isAll(const frame &words, quint32 value)
{
    return std::all_of(words.begin(), words.end(), [value](quint32 w) { return w == value; });
}
