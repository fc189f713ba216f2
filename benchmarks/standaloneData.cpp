// SPDX-License-Identifier: GPL-3.0-or-later
#include "standaloneLoops.h"

#include <omp.h>
#include <QByteArray>

#include <atomic>

int unknownZero = 0;

namespace
{

inline std::uint32_t colourSum(std::uint32_t word)
{
    return (word & 255) + (word >> 8 & 255) + (word >> 16 & 255);
}

/// A function, because g++ 12 makes a longer chain of dependent instructions of the same expression
/// when it is written out: it then fails to see that the mask never changes the lowest bit.
inline std::uint32_t oneBit(std::uint32_t crc)
{
    return (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1U)));
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

void standaloneRle(std::uint32_t *unpacked, std::uint32_t *packed, const std::uint32_t *source,
                   std::size_t count, std::uint32_t marker)
{
    std::size_t length = 0;
    for (std::size_t i = 0; i < count;) {
        const std::uint32_t word = source[i];
        if (word == marker) {
            packed[length++] = marker;
            packed[length++] = 1;
            packed[length++] = marker;
            ++i;
            continue;
        }
        std::size_t run = 1;
        while (i + run < count && source[i + run] == word)
            ++run;
        if (run < 3) {
            packed[length++] = word;
            ++i;
            continue;
        }
        packed[length++] = marker;
        packed[length++] = static_cast<std::uint32_t>(run - 1);
        packed[length++] = word;
        i += run;
    }

    std::size_t out = 0;
    std::size_t in = 0;
    while (in < length) {
        if (packed[in] != marker || in + 2 >= length) {
            unpacked[out++] = packed[in++];
            continue;
        }
        const std::uint32_t run = packed[in + 1] + 1;
        for (std::uint32_t k = 0; k < run; ++k)
            unpacked[out++] = packed[in + 2];
        in += 3;
    }
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

void standaloneCrc32(std::uint32_t *frame, int width, int height, bool multicore)
{
    const int chunks = omp_get_max_threads();
    const std::size_t chunkSize = static_cast<std::size_t>(width) * static_cast<std::size_t>(height)
                                  * 4 / static_cast<std::size_t>(chunks);
#pragma omp parallel for schedule(static) if (multicore)
    for (int p = 0; p < chunks; ++p) {
        auto *bytes = reinterpret_cast<unsigned char *>(frame);
        bytes += static_cast<std::size_t>(p) * chunkSize;
        std::uint32_t crc = 0;
        for (std::size_t i = 0; i < chunkSize; ++i) {
            // Relaxed atomics, because other threads write their results into the first chunk.
            crc ^= std::atomic_ref(bytes[i]).load(std::memory_order_relaxed);
            crc = oneBit(oneBit(oneBit(oneBit(crc))));
            crc = oneBit(oneBit(oneBit(oneBit(crc))));
        }
        if (p < width)
            std::atomic_ref(frame[p]).store(~crc, std::memory_order_relaxed);
    }
}
