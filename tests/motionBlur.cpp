// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/motionBlur.h"

#include "tests/pixel.h"
#include "tests/stampDot.h"
#include "tests/truncate.h"

#include <algorithm>
#include <cstdlib>

namespace
{

constexpr int rectangleCount = 2000;

/// The weights of the filter in the arithmetic of its mode. They add up to 255.
template <typename number> struct tapWeights {
    explicit tapWeights(qint32 phase)
        : left(static_cast<number>(phase)),
          right(static_cast<number>(128 - phase)),
          centre(static_cast<number>(159 - phase - (128 - phase)))
    {
    }

    number left;
    number right;
    number centre;
    number above = 64;
    number below = 32;
};

struct neighbourhood {
    quint32 left;
    quint32 right;
    quint32 centre;
    quint32 above;
    quint32 below;
};

// The weights keep the sums below the limit; it is part of the measured work all the same. What
// follows is forced into the loop over the pixels: some compilers would call it there.

Q_ALWAYS_INLINE quint32 scaleDown(quint32 sum)
{
    return std::min(sum >> 8, 255U);
}

Q_ALWAYS_INLINE quint32 scaleDown(float sum)
{
    return static_cast<quint32>(static_cast<qint32>(std::min(sum * 0.00390625F, 255.0F)));
}

Q_ALWAYS_INLINE quint32 scaleDown(double sum)
{
    return static_cast<quint32>(static_cast<qint32>(std::min(sum * 0.00390625, 255.0)));
}

template <typename number>
Q_ALWAYS_INLINE quint32 blend(const neighbourhood &pixels, const tapWeights<number> &weights,
                              int shift)
{
    return scaleDown(component<number>(pixels.left, shift) * weights.left
                     + component<number>(pixels.right, shift) * weights.right
                     + component<number>(pixels.centre, shift) * weights.centre
                     + component<number>(pixels.above, shift) * weights.above
                     + component<number>(pixels.below, shift) * weights.below);
}

/// One pass over the frame but for its border. The order of the pixels matters: see the class. A
/// function of its own for each arithmetic, whose machine code can be told apart.
template <typename number>
Q_NEVER_INLINE void smear(quint32 *frame, int width, int height, qint32 phase)
{
    const tapWeights<number> weights(phase);
    for (int y = 1; y < height - 1; ++y) {
        quint32 *row = frame + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        for (int x = 1; x < width - 1; ++x) {
            const quint32 *at = row + x;
            const neighbourhood pixels = {at[-1], at[1], at[0], at[-width], at[width]};
            row[x] =
                opaquePixel(blend(pixels, weights, redShift), blend(pixels, weights, greenShift),
                            blend(pixels, weights, blueShift));
        }
    }
}

/// A velocity of at most 0.5 % of @p extent per run. It draws one random number.
float randomVelocity(qint32 extent)
{
    return static_cast<float>(std::rand() % 1000 - 500) * 0.005F
           * (static_cast<float>(extent) * 0.002F);
}

} // namespace

motionBlur::motionBlur(quint32 mode) : arithmetic(mode) {}

bool motionBlur::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    phase = 0;
    phaseStep = 1;
    fillBlack();
    scatter();
    preRun();
    return true;
}

QString motionBlur::getName() const
{
    const QString arithmeticName = arithmetic == 1   ? QStringLiteral(" f32")
                                   : arithmetic == 2 ? QStringLiteral(" f64")
                                                     : QString();
    return QStringLiteral("motion blur%1").arg(arithmeticName);
}

void motionBlur::preRun()
{
    for (rectangle &r : rectangles) {
        r.x += r.vx;
        r.y += r.vy;
        if (!(r.x > 0) || r.x >= static_cast<float>(width))
            r.vx = -r.vx;
        // Against the width as well, so that on wide frames the rectangles dive below the bottom
        // edge before they turn: that is how the picture is meant.
        if (!(r.y > 0) || r.y >= static_cast<float>(width))
            r.vy = -r.vy;
        stampDot(*this, truncateToWord(static_cast<double>(r.x)),
                 truncateToWord(static_cast<double>(r.y)), r.colour);
    }
}

void motionBlur::run()
{
    turnPhase();
    switch (arithmetic) {
    case 1:
        smear<float>(getBuffer(), width, height, phase);
        break;
    case 2:
        smear<double>(getBuffer(), width, height, phase);
        break;
    default:
        smear<quint32>(getBuffer(), width, height, phase);
        break;
    }
}

void motionBlur::scatter()
{
    rectangles.resize(rectangleCount);
    for (rectangle &r : rectangles) {
        r.x = static_cast<float>(std::rand() % width);
        r.y = static_cast<float>(std::rand() % height);
        r.vx = randomVelocity(width);
        r.vy = randomVelocity(height);
        const auto green = static_cast<quint32>(std::rand() & 255);
        r.colour = opaquePixel(255, green, 0);
    }
}

void motionBlur::turnPhase()
{
    phase += phaseStep;
    if (phase >= 128)
        phaseStep = -1;
    if (phase < 1)
        phaseStep = 1;
}
