// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/codecTest.h"

#include <algorithm>

codecTest::codecTest(quint32 tiles) : tileCount(tiles) {}

bool codecTest::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    if (!source.load(QStringLiteral(":/data/pic2_512_512.png"), tileCount)) {
        release();
        return false;
    }
    showPacked = true;
    fillBlack();
    return true;
}

void codecTest::release()
{
    source.free();
    packed.free();
    unpacked.free();
    testBase::release();
}

void codecTest::preRun()
{
    const std::size_t length = std::size_t{2} * source.getCount();
    if (!packed.allocate(length) || !unpacked.allocate(length)) {
        fail();
        return;
    }
    std::fill_n(packed.data(), length, opaqueBlack);
}

void codecTest::postRun()
{
    fillBlack();
    if (!hasFailed()) {
        if (showPacked)
            showWords(packed.data(), 0);
        else
            showWords(unpacked.data(), opaqueBlack);
    }
    showPacked = !showPacked;
    packed.free();
    unpacked.free();
}

float codecTest::megawords() const
{
    return static_cast<float>(source.getWidth()) * static_cast<float>(source.getHeight()) * 1e-6F;
}

/// The top-left part of @p words that fits the frame, each combined with the bits of @p alpha.
void codecTest::showWords(const quint32 *words, quint32 alpha)
{
    const quint32 columns = std::min(source.getWidth(), static_cast<quint32>(width));
    const quint32 rows = std::min(source.getHeight(), static_cast<quint32>(height));
    for (quint32 y = 0; y < rows; ++y) {
        const quint32 *from = words + static_cast<std::size_t>(y) * source.getWidth();
        quint32 *to = row(static_cast<int>(y));
        for (quint32 x = 0; x < columns; ++x)
            to[x] = from[x] | alpha;
    }
}
