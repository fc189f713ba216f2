// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/colors.h"

#include "rounds.h"

#include <QtTest>

#include <omp.h>

#include <cmath>

namespace
{

struct centre {
    float x;
    float y;
};

centre centreOf(int glow, float time, int width, int height)
{
    const float phase = time + float(glow) * 1.57075F;
    return {float(width) * (1.0F / 3.0F) * std::sin(phase) + float(width) * 0.5F,
            float(height) * (1.0F / 3.0F) * std::cos(phase) + float(height) * 0.5F};
}

/// The frame after @p runs runs, written down anew from its definition.
frame expectedFrame(int width, int height, int runs)
{
    float time = 0;
    for (int i = 0; i < runs; ++i)
        time += 0.04F;
    const float scale = (3820.0F / float(width)) * 0.15F;
    frame pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            float light[4] = {};
            for (int i = 0; i < 4; ++i) {
                const centre c = centreOf(i, time, width, height);
                const float vertical = c.y - float(y);
                const float horizontal = c.x - float(x);
                const float squared = vertical * vertical + horizontal * horizontal;
                const float away = std::sqrt(squared) * scale;
                light[i] = away > 255.0F ? 0.0F : 255.0F - away;
            }
            quint32 pixel = 255;
            for (int i = 0; i < 3; ++i) {
                const float sum = light[i] + light[3];
                pixel = pixel * 256 + (sum > 255.0F ? 255U : quint32(sum));
            }
            pixels.push_back(pixel);
        }
    }
    return pixels;
}

} // namespace

class tst_colors : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void frames_data();
    void frames();
    void threadsDoNotMatter();
    void glowsAndDarkness();
    void exactCentres_data();
    void exactCentres();
    void setupRestarts();
};

void tst_colors::names()
{
    QCOMPARE(colors(0).getName(), QStringLiteral("colors "));
    QCOMPARE(colors(1).getName(), QStringLiteral("colors  (multicore)"));
    QVERIFY(!colors(0).isMulticore());
    QVERIFY(colors(1).isMulticore());
    colors test(0);
    QVERIFY(test.setup(1920, 1080));
    QCOMPARE(test.getWork(), 2.0736F);
    QCOMPARE(test.getUnit(), QStringLiteral("MPixel"));
    QVERIFY(!test.setup(-3, -3));
    QVERIFY(!test.getBuffer());
}

void tst_colors::frames_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("runs");
    for (const quint32 mode : {0U, 1U}) {
        for (const frameSize &size : oddSizes) {
            QTest::addRow("mode %u, %dx%d", mode, size.width, size.height)
                << mode << size.width << size.height << 2;
        }
        QTest::addRow("mode %u, later", mode) << mode << 97 << 61 << 150;
    }
}

void tst_colors::frames()
{
    QFETCH(quint32, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, runs);
    colors test(mode);
    QVERIFY(test.setup(width, height));
    QVERIFY(frameOf(test) == blackFrame(width, height));
    runRounds(test, runs);
    QVERIFY(frameOf(test) == expectedFrame(width, height, runs));
}

void tst_colors::threadsDoNotMatter()
{
    const int threads = omp_get_max_threads();
    for (const int count : {1, 2, 3, 7}) {
        omp_set_num_threads(count);
        colors test(1);
        QVERIFY(test.setup(61, 47));
        runRounds(test, 3);
        QVERIFY(frameOf(test) == expectedFrame(61, 47, 3));
    }
    omp_set_num_threads(threads);
}

void tst_colors::glowsAndDarkness()
{
    constexpr int width = 1000;
    constexpr int height = 1500;
    colors test(0);
    QVERIFY(test.setup(width, height));
    runRounds(test, 1);
    const auto pixelAt = [&test](const centre &c) {
        return test.getBuffer()[int(std::lround(c.y)) * width + int(std::lround(c.x))];
    };
    // A pixel is at most 0.71 away from a centre, which costs less than one step of light.
    QVERIFY((pixelAt(centreOf(0, 0.04F, width, height)) >> 16 & 255U) >= 254U);
    QVERIFY((pixelAt(centreOf(1, 0.04F, width, height)) >> 8 & 255U) >= 254U);
    QVERIFY((pixelAt(centreOf(2, 0.04F, width, height)) & 255U) >= 254U);
    const quint32 white = pixelAt(centreOf(3, 0.04F, width, height));
    for (const int shift : {0, 8, 16})
        QVERIFY((white >> shift & 255U) >= 254U);
    QCOMPARE(test.getBuffer()[0], black);

    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            bool far = true;
            for (int i = 0; i < 4; ++i) {
                const centre c = centreOf(i, 0.04F, width, height);
                far = far && std::hypot(c.x - float(x), c.y - float(y)) > 0.4455F * width;
            }
            if (far)
                QCOMPARE(test.getBuffer()[y * width + x], black);
        }
    }
}

/// Frames in which the centre of a glow falls on a pixel to the last bit; there are few.
void tst_colors::exactCentres_data()
{
    QTest::addColumn<int>("glow");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("runs");
    QTest::addColumn<quint32>("full");
    QTest::addRow("red") << 0 << 2293 << 3685 << 3 << 0xFFFF0000U;
    QTest::addRow("green") << 1 << 3133 << 5971 << 1 << 0xFF00FF00U;
    QTest::addRow("blue") << 2 << 2519 << 3768 << 1 << 0xFF0000FFU;
    QTest::addRow("white") << 3 << 3294 << 4052 << 4 << 0xFFFFFFFFU;
}

void tst_colors::exactCentres()
{
    QFETCH(int, glow);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, runs);
    QFETCH(quint32, full);
    float time = 0;
    for (int i = 0; i < runs; ++i)
        time += 0.04F;
    const centre at = centreOf(glow, time, width, height);
    QVERIFY(at.x == std::floor(at.x) && at.y == std::floor(at.y));

    colors test(1);
    QVERIFY(test.setup(width, height));
    runRounds(test, runs);
    const quint32 pixel = test.getBuffer()[int(at.y) * width + int(at.x)];
    QCOMPARE(pixel & full, full);
}

void tst_colors::setupRestarts()
{
    colors test(0);
    QVERIFY(test.setup(20, 10));
    runRounds(test, 5);
    QVERIFY(test.setup(20, 10));
    QVERIFY(frameOf(test) == blackFrame(20, 10));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == expectedFrame(20, 10, 1));
}

QTEST_APPLESS_MAIN(tst_colors)
#include "tst_colors.moc"
