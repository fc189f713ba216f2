// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <QByteArray>

int unknownZero = 0;

namespace
{

inline std::uint32_t colourSum(std::uint32_t word)
{
    return (word & 255) + (word >> 8 & 255) + (word >> 16 & 255);
}

template <bool isKept> void shellSort(std::uint32_t *words, std::uint32_t count)
{
    const auto zero = static_cast<std::uint32_t>(unknownZero);
    for (std::uint32_t gap = count / 2; gap > 0; gap /= 2) {
        for (std::uint32_t i = gap; i < count; ++i) {
            std::uint32_t moved = words[i];
            std::uint32_t j = i;
            while (j >= gap && colourSum(moved) < colourSum(words[j - gap])) {
                words[j] = words[j - gap];
                j -= gap;
                if constexpr (isKept)
                    moved += zero;
            }
            words[j] = moved;
        }
    }
}

template <bool isKept> void copyBytes(char *out, const QByteArray &plain)
{
    const int zero = unknownZero;
    for (int i = 0; i < plain.size(); ++i) {
        if constexpr (isKept)
            out[i] = static_cast<char>(plain.at(i) + zero);
        else
            out[i] = plain.at(i);
    }
}

} // namespace

void standaloneShellSort(std::uint32_t *words, std::uint32_t count, keeping kept)
{
    if (kept == keeping::nothing)
        shellSort<false>(words, count);
    else
        shellSort<true>(words, count);
}

void standaloneZlib(void *unpacked, const void *packed, int packedBytes, keeping kept)
{
    const QByteArray input(static_cast<const char *>(packed), packedBytes);
    const QByteArray plain = qUncompress(input);
    if (kept == keeping::nothing)
        copyBytes<false>(static_cast<char *>(unpacked), plain);
    else
        copyBytes<true>(static_cast<char *>(unpacked), plain);
}
