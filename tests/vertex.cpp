// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/vertex.h"

#include "tests/pixel.h"
#include "tests/stampDot.h"
#include "tests/truncate.h"

#include <QFile>
#include <QTextStream>
#include <QVector>

#include <algorithm>
#include <array>
#include <atomic>

namespace
{

constexpr float nearPlane = 0.1F;
constexpr float farPlane = 60.0F;
/// The tangent of 30 degrees: a field of view of 60.
constexpr float halfView = 0.57735026F;

/// Reads records of three numbers, each followed by one character, and centres them on the origin.
/// The line feed after the last carriage return starts a record that finds no number and ends it.
QVector<vector4> readPoints(QTextStream &text)
{
    QVector<vector4> cloud;
    for (;;) {
        float x = 0;
        float y = 0;
        float z = 0;
        QChar separator;
        text >> x >> separator >> y >> separator >> z;
        if (text.status() != QTextStream::Ok)
            return cloud;
        // w is 0: a translation is added to a point, it does not come out of the matrix.
        cloud.append({x * 0.01F, y * 0.01F, (z - 150.0F) * 0.01F, 0.0F});
        text >> separator;
    }
}

frustum extentsOf(int width, int height)
{
    const float top = halfView * nearPlane;
    const float right = static_cast<float>(width) / static_cast<float>(height) * top;
    return {-right, right, -top, top, nearPlane, farPlane};
}

/// The scale of the next copy. All threads read it and count it down unsynchronised: which copy
/// gets which scale is left to chance, and costs nothing. Relaxed atomics are plain loads and
/// stores.
class sharedScale
{
public:
    vector4 get() const { return {load(0), load(1), load(2), load(3)}; }
    void countDown(float step)
    {
        for (std::size_t k = 0; k < 4; ++k)
            components[k].store(load(k) - step, std::memory_order_relaxed);
    }

private:
    float load(std::size_t k) const { return components[k].load(std::memory_order_relaxed); }

    std::array<std::atomic<float>, 4> components = {1.0F, 1.0F, 1.0F, 1.0F};
};

void transformCopy(vector4 *out, const vector4 *points, int count, const vertex::transform &by,
                   const vector4 &scale)
{
    for (int j = 0; j < count; ++j) {
        const vector4 p = points[j];
        const vector4 q = {(dotProduct(by.rotation[0], p) + by.translation.x) * scale.x,
                           (dotProduct(by.rotation[1], p) + by.translation.y) * scale.y,
                           (dotProduct(by.rotation[2], p) + by.translation.z) * scale.z,
                           (dotProduct(by.rotation[3], p) + by.translation.w) * scale.w};
        out[j] = {dotProduct(by.projection[0], q), dotProduct(by.projection[1], q),
                  dotProduct(by.projection[2], q), dotProduct(by.projection[3], q)};
    }
}

/// Where @p v, seen with a perspective of 1 / z, falls along a side of @p extent pixels.
quint32 screenPosition(float v, float inverse, int extent)
{
    const double half = extent * 0.5;
    const auto position = static_cast<float>(double{inverse} * double{v} * half + half);
    return truncateToWord(double{position});
}

} // namespace

vertex::vertex(quint32 mode) : multicore(mode) {}

bool vertex::setup(int newWidth, int newHeight)
{
    if (!testBase::setup(newWidth, newHeight))
        return false;
    fillBlack();
    if (!loadPoints()) {
        release();
        return false;
    }
    fieldOfView = 60;
    extents = extentsOf(width, height);
    unusedTop = extents.top;
    current.projection = projection(extents);
    angleA = 0;
    angleB = 0;
    return true;
}

void vertex::release()
{
    points.free();
    transformed.free();
    testBase::release();
}

QString vertex::getName() const
{
    return QStringLiteral("vertex%1")
        .arg(isMulticore() ? QStringLiteral(" (multicore)") : QString());
}

void vertex::preRun()
{
    angleA += 0.01F;
    angleB += 0.02F;
    current.rotation = product(product(rotationX(-angleA), rotationY(angleB)), rotationZ(angleC));
    current.translation = {0, 0, 0.01F, 0};
    fillBlack();
}

void vertex::run()
{
    sharedScale scale;
    const float step = 1.0F / static_cast<float>(copies);
#pragma omp parallel for schedule(static) if (multicore == 1)
    for (int i = 0; i < copies; ++i) {
        transformCopy(transformed.data() + static_cast<std::ptrdiff_t>(i) * pointCount,
                      points.data(), pointCount, current, scale.get());
        scale.countDown(step);
    }
}

void vertex::postRun()
{
    for (int j = 0; j < pointCount; ++j) {
        const vector4 v = transformed.data()[j];
        if (!(v.z >= nearPlane))
            continue;
        const float inverse = 1.0F / v.z;
        const auto grey = static_cast<quint32>(std::min(inverse * 224.0F, 255.0F));
        stampDot(*this, screenPosition(v.x, inverse, width), screenPosition(v.y, inverse, height),
                 opaquePixel(grey, grey, grey));
    }
}

float vertex::getWork() const
{
    return static_cast<float>(copies) * static_cast<float>(pointCount) * 1e-6F;
}

bool vertex::loadPoints()
{
    QFile file(QStringLiteral(":/data/wPoints.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QTextStream text(&file);
    const QVector<vector4> cloud = readPoints(text);
    const auto count = static_cast<std::size_t>(cloud.size());
    if (!points.allocate(count) || !transformed.allocate(static_cast<std::size_t>(copies) * count))
        return false;
    std::copy(cloud.begin(), cloud.end(), points.data());
    pointCount = cloud.size();
    return true;
}
