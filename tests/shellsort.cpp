// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/shellsort.h"

#include "tests/opaque.h"

#include <algorithm>

namespace
{

quint32 brightness(quint32 word)
{
    return (word & 0xFFU) + (word >> 8 & 0xFFU) + (word >> 16 & 0xFFU);
}

} // namespace

bool shellsort::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    if (!source.load(QStringLiteral(":/data/pic4_512_512.png"), 1)) {
        release();
        return false;
    }
    fillBlack();
    return true;
}

void shellsort::release()
{
    source.free();
    work.free();
    testBase::release();
}

void shellsort::preRun()
{
    if (!work.allocate(source.getCount())) {
        fail();
        return;
    }
    std::copy_n(source.data(), source.getCount(), work.data());
}

void shellsort::run()
{
    if (!hasFailed())
        sort(work.data(), source.getCount());
}

void shellsort::postRun()
{
    fillBlack();
    const auto pixels = static_cast<quint32>(width) * static_cast<quint32>(height);
    if (!hasFailed())
        std::copy_n(work.data(), std::min(source.getCount(), pixels), getBuffer());
    work.free();
}

float shellsort::getWork() const
{
    return static_cast<float>(source.getWidth()) * static_cast<float>(source.getHeight()) * 1e-6F;
}

void shellsort::sort(quint32 *words, quint32 count)
{
    for (quint32 gap = count / 2; gap > 0; gap /= 2) {
        for (quint32 i = gap; i < count; ++i) {
            quint32 word = words[i];
            quint32 j = i;
            while (j >= gap) {
                // Both keys are worked out for every comparison, as in a sort that knows nothing
                // of its keys.
                makeOpaque(word);
                const quint32 other = words[j - gap];
                if (brightness(word) >= brightness(other))
                    break;
                words[j] = other;
                j -= gap;
            }
            words[j] = word;
        }
    }
}
