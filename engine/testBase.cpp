// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/testBase.h"

#include <algorithm>

namespace
{

std::size_t pixelCount(int width, int height)
{
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// Whether width x height fits the signed 32-bit arithmetic that frame sizes are defined in.
bool isValidSize(int width, int height)
{
    if (width < 1 || height < 1)
        return false;
    const quint32 product = static_cast<quint32>(width) * static_cast<quint32>(height);
    return static_cast<qint32>(product) >= 1;
}

} // namespace

testBase::testBase(printHook *target) : printTarget(target) {}

testBase::~testBase() = default;

void testBase::print(const QString &text)
{
    if (printTarget)
        printTarget->print(text);
}

bool testBase::setup(int newWidth, int newHeight)
{
    release();
    failed = false;
    if (!isValidSize(newWidth, newHeight) || !buffer.allocate(pixelCount(newWidth, newHeight)))
        return false;
    width = newWidth;
    height = newHeight;
    isSetup = true;
    return true;
}

void testBase::release()
{
    buffer.free();
    isSetup = false;
}

QString testBase::getResultText(float average) const
{
    return QStringLiteral("%1/s %2").arg(QString::number(static_cast<double>(getWork() / average)),
                                         getUnit());
}

float testBase::megapixels() const
{
    return static_cast<float>(width) * static_cast<float>(height) * 1e-6F;
}

void testBase::fillBlack()
{
    std::fill_n(buffer.data(), pixelCount(width, height), opaqueBlack);
}
