// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/crc32.h"

#include <omp.h>

#include <atomic>
#include <cstddef>

namespace
{

/// One bit. The mask keeps it free of branches with every compiler: as a condition, some make a
/// conditional move of it and some an arithmetic mask, at half the speed.
Q_ALWAYS_INLINE quint32 shiftBit(quint32 crc)
{
    return (crc >> 1) ^ (0xEDB88320U & (0U - (crc & 1U)));
}

Q_ALWAYS_INLINE quint32 shiftNibble(quint32 crc)
{
    return shiftBit(shiftBit(shiftBit(shiftBit(crc))));
}

/// The reflected CRC-32 of @p size bytes. Its register starts at 0, where the standard has all
/// ones; results have always been made that way.
///
/// The first chunk may be read while the results of others are written into it. A relaxed atomic
/// byte load is a plain load, without the undefined behaviour.
quint32 checksum(unsigned char *bytes, std::size_t size)
{
    quint32 crc = 0;
    for (std::size_t i = 0; i < size; ++i) {
        crc ^= std::atomic_ref(bytes[i]).load(std::memory_order_relaxed);
        crc = shiftNibble(shiftNibble(crc));
    }
    return ~crc;
}

} // namespace

crc32::crc32(quint32 mode) : multicore(mode) {}

bool crc32::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    fillBlack();
    return true;
}

QString crc32::getName() const
{
    return QStringLiteral("crc32 bitwise%1")
        .arg(isMulticore() ? QStringLiteral(" (multicore)") : QString());
}

void crc32::run()
{
    const int chunks = omp_get_max_threads();
    const std::size_t total =
        static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * sizeof(quint32);
    const std::size_t chunkSize = total / static_cast<std::size_t>(chunks);
    auto *bytes = reinterpret_cast<unsigned char *>(getBuffer());
#pragma omp parallel for schedule(static) if (multicore == 1)
    for (int p = 0; p < chunks; ++p) {
        const quint32 result = checksum(bytes + static_cast<std::size_t>(p) * chunkSize, chunkSize);
        if (p < width)
            std::atomic_ref(getBuffer()[p]).store(result, std::memory_order_relaxed);
    }
}
