// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/motionBlur.h"

#include "rounds.h"

#include <QtTest>

#include <cmath>
#include <cstdlib>

namespace
{

/// The scene, written down anew from its definition.
class scene
{
public:
    scene(int w, int h) : width(w), height(h), pixels(blackFrame(w, h))
    {
        for (int i = 0; i < 2000; ++i) {
            body b = {};
            b.x = float(std::rand() % width);
            b.y = float(std::rand() % height);
            b.vx = float(std::rand() % 1000 - 500) * 0.005F * (float(width) * 0.002F);
            b.vy = float(std::rand() % 1000 - 500) * 0.005F * (float(height) * 0.002F);
            b.green = quint32(std::rand() % 256);
            bodies.push_back(b);
        }
        move();
    }

    void move()
    {
        for (body &b : bodies) {
            b.x = b.x + b.vx;
            b.y = b.y + b.vy;
            const auto edge = float(width);
            b.vx = b.x > 0 && b.x < edge ? b.vx : -b.vx;
            b.vy = b.y > 0 && b.y < edge ? b.vy : -b.vy;
            for (int i = 0; i < width / 320; ++i) {
                for (int j = 0; j < height / 240; ++j)
                    set(int(std::trunc(b.x)) + i, int(std::trunc(b.y)) + j,
                        0xFFFF0000U + b.green * 256);
            }
        }
    }

    void filter()
    {
        ++runs;
        const int place = runs % 256;
        const int phase = place <= 128 ? place : 256 - place;
        for (int y = 1; y + 1 < height; ++y) {
            for (int x = 1; x + 1 < width; ++x) {
                quint32 result = 0xFF;
                for (int shift = 16; shift >= 0; shift -= 8) {
                    const int sum = channel(x - 1, y, shift) * phase
                                    + channel(x + 1, y, shift) * (128 - phase)
                                    + channel(x, y, shift) * 31 + channel(x, y - 1, shift) * 64
                                    + channel(x, y + 1, shift) * 32;
                    result = result * 256 + quint32(sum / 256);
                }
                set(x, y, result);
            }
        }
    }

    const frame &getPixels() const { return pixels; }

private:
    struct body {
        float x;
        float y;
        float vx;
        float vy;
        quint32 green;
    };

    std::size_t index(int x, int y) const
    {
        return std::size_t(y) * std::size_t(width) + std::size_t(x);
    }
    int channel(int x, int y, int shift) const { return int(pixels[index(x, y)] >> shift & 255U); }
    void set(int x, int y, quint32 pixel)
    {
        if (x >= 0 && x < width && y >= 0 && y < height)
            pixels[index(x, y)] = pixel;
    }

    int width;
    int height;
    int runs = 0;
    frame pixels;
    std::vector<body> bodies;
};

} // namespace

class tst_motionBlur : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void work();
    void frames_data();
    void frames();
    void sevenBySeven_data();
    void sevenBySeven();
    void phaseSwings();
    void smallFramesStayBlack_data();
    void smallFramesStayBlack();
    void setupStartsANewScene();
    void failedSetup();
};

void tst_motionBlur::names()
{
    QCOMPARE(motionBlur(0).getName(), QStringLiteral("motion blur"));
    QCOMPARE(motionBlur(1).getName(), QStringLiteral("motion blur f32"));
    QCOMPARE(motionBlur(2).getName(), QStringLiteral("motion blur f64"));
    QCOMPARE(motionBlur(3).getName(), QStringLiteral("motion blur"));
    QCOMPARE(motionBlur(0).getUnit(), QStringLiteral("MPixel"));
    QVERIFY(!motionBlur(1).isMulticore());
}

void tst_motionBlur::work()
{
    motionBlur test(0);
    QVERIFY(test.setup(1920, 1080));
    QCOMPARE(test.getWork(), 2.0736F);
}

void tst_motionBlur::frames_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("runs");
    for (const quint32 mode : {0U, 1U, 2U}) {
        for (const frameSize &size : oddSizes) {
            QTest::addRow("mode %u, %dx%d", mode, size.width, size.height)
                << mode << size.width << size.height << 3;
        }
        QTest::addRow("mode %u, large dots", mode) << mode << 700 << 500 << 12;
        QTest::addRow("mode %u, dots below the edge", mode) << mode << 960 << 240 << 60;
        QTest::addRow("mode %u, high", mode) << mode << 320 << 900 << 12;
    }
}

void tst_motionBlur::frames()
{
    QFETCH(quint32, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, runs);

    std::srand(11);
    motionBlur test(mode);
    QVERIFY(test.setup(width, height));
    std::srand(11);
    scene expected(width, height);
    QVERIFY(frameOf(test) == expected.getPixels());
    for (int i = 0; i < runs; ++i) {
        test.preRun();
        expected.move();
        QVERIFY(frameOf(test) == expected.getPixels());
        test.run();
        expected.filter();
        test.postRun();
    }
    QVERIFY(frameOf(test) == expected.getPixels());
}

void tst_motionBlur::sevenBySeven_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addRow("integer") << 0U;
    QTest::addRow("single") << 1U;
    QTest::addRow("double") << 2U;
}

void tst_motionBlur::sevenBySeven()
{
    QFETCH(quint32, mode);
    motionBlur test(mode);
    QVERIFY(test.setup(7, 7));
    test.getBuffer()[3 * 7 + 3] = 0xFFFFFFFFU;
    runRounds(test, 1);

    frame expected = blackFrame(7, 7);
    const auto set = [&expected](std::size_t x, std::size_t y, quint32 value) {
        expected[y * 7 + x] = black + value * 0x010101U;
    };
    set(3, 2, 31);
    set(2, 3, 126);
    set(3, 3, 39);
    set(2, 4, 31);
    set(3, 4, 9);
    set(2, 5, 7);
    set(3, 5, 2);
    QVERIFY(frameOf(test) == expected);
}

void tst_motionBlur::phaseSwings()
{
    motionBlur test(0);
    QVERIFY(test.setup(7, 7));
    for (int run = 1; run <= 600; ++run) {
        std::fill_n(test.getBuffer(), 49, black);
        test.getBuffer()[3 * 7 + 3] = 0xFF0000FFU;
        runRounds(test, 1);
        const int place = run % 256;
        const int phase = place <= 128 ? place : 256 - place;
        QCOMPARE(test.getBuffer()[3 * 7 + 2] & 255U, quint32(255 * (128 - phase) / 256));
    }
}

void tst_motionBlur::smallFramesStayBlack_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addRow("narrow") << 319 << 400;
    QTest::addRow("low") << 400 << 239;
    QTest::addRow("without an inside") << 2 << 2;
}

void tst_motionBlur::smallFramesStayBlack()
{
    QFETCH(int, width);
    QFETCH(int, height);
    motionBlur test(0);
    QVERIFY(test.setup(width, height));
    runRounds(test, 2);
    QVERIFY(frameOf(test) == blackFrame(width, height));
}

void tst_motionBlur::setupStartsANewScene()
{
    motionBlur test(0);
    std::srand(5);
    QVERIFY(test.setup(330, 250));
    runRounds(test, 1);
    const frame first = frameOf(test);
    runRounds(test, 4);
    std::srand(5);
    QVERIFY(test.setup(330, 250));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == first);
}

void tst_motionBlur::failedSetup()
{
    motionBlur test(0);
    QVERIFY(!test.setup(10, -1));
    QVERIFY(!test.getBuffer());
}

QTEST_APPLESS_MAIN(tst_motionBlur)
#include "tst_motionBlur.moc"
