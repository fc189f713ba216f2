// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/mandel.h"

#include "rounds.h"
#include "tests/knownFrames.h"

#include <QtTest>

#include <vector>

namespace
{

/// The colour of entry @p n of the palette before any rotation.
quint32 freshPaletteEntry(int n)
{
    const int i = 4 * (n % 64);
    const int red[] = {i + 128, 64, 64, 64};
    const int green[] = {i, 255, 255 - i, 0};
    const int blue[] = {0, i, 255, 255 - i};
    const int quarter = n / 64;
    return 0xFF000000U | static_cast<quint32>(red[quarter]) << 16
           | static_cast<quint32>(green[quarter]) << 8 | static_cast<quint32>(blue[quarter]);
}

/// The frame after @p runs runs, written down anew from its definition.
std::vector<quint32> expectedFrame(int width, int height, int runs)
{
    std::vector<quint32> frame;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const float re = float(x) * (1.0F / float(width)) * 2.5F - 2.0F;
            const float im = float(y) / float(height) * 2.5F - 1.25F;
            float a = 0;
            float b = 0;
            int n = 0;
            bool escaped = false;
            for (; n < 64 && !escaped; ++n) {
                const float a2 = a * a - b * b + re;
                b = 2 * a * b + im;
                a = a2;
                escaped = a * a + b * b > 4.0F;
            }
            frame.push_back(n < 64 ? freshPaletteEntry((n + runs) % 256) : 0xFF000000U);
        }
    }
    return frame;
}

} // namespace

class tst_mandel : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void work();
    void frames_data();
    void frames();
    void oneByOne();
    void insideStaysBlack();
    void paletteReturnsAfter256Runs();
    void redWraps();
    void setupRestartsThePalette();
    void failedSetup();
};

void tst_mandel::names()
{
    QCOMPARE(mandel(0).getName(), QStringLiteral("mandel"));
    QCOMPARE(mandel(1).getName(), QStringLiteral("mandel (multicore)"));
    QVERIFY(!mandel(0).isMulticore());
    QVERIFY(mandel(1).isMulticore());
    QVERIFY(!mandel(0).isSingleOnly());
    QCOMPARE(mandel(0).getUnit(), QStringLiteral("MPixel"));
}

void tst_mandel::work()
{
    mandel test(0);
    QVERIFY(test.setup(1920, 1080));
    QCOMPARE(test.getWork(), 2.0736F);
}

void tst_mandel::frames_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("runs");
    QTest::addColumn<QByteArray>("digest");

    struct smallFrame {
        int width;
        int height;
        int runs;
        const char *digest;
    };
    const smallFrame frames[] = {
        {97, 61, 1, "4a372deab0a7af305706064ac25ac55d0f9c6988"},
        {97, 61, 2, "59062498b6cff286722dc9620decb3c3c34ffe18"},
        {97, 61, 257, "4a372deab0a7af305706064ac25ac55d0f9c6988"},
        {1, 500, 3, "25ab1be29e23f3993d14285ab924406eb1c9eaf5"},
    };
    for (const quint32 mode : {0U, 1U}) {
        for (const smallFrame &small : frames) {
            QTest::addRow("mode %u, %dx%d, run %d", mode, small.width, small.height, small.runs)
                << mode << small.width << small.height << small.runs << QByteArray(small.digest);
        }
    }
}

void tst_mandel::frames()
{
    QFETCH(quint32, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, runs);
    QFETCH(QByteArray, digest);

    mandel test(mode);
    QVERIFY(test.setup(width, height));
    runRounds(test, runs);

    const std::vector<quint32> expected = expectedFrame(width, height, runs);
    QVERIFY(std::equal(expected.begin(), expected.end(), test.getBuffer()));
    QCOMPARE(digestOf(test), digest);
}

void tst_mandel::oneByOne()
{
    mandel test(0);
    QVERIFY(test.setup(1, 1));
    QCOMPARE(test.getBuffer()[0], 0xFF000000U);
    runRounds(test, 1);
    // c = (-2, -1.25) escapes at once, and the palette has turned by one entry.
    QCOMPARE(test.getBuffer()[0], freshPaletteEntry(2));
}

void tst_mandel::insideStaysBlack()
{
    mandel test(0);
    QVERIFY(test.setup(50, 50));
    for (int i = 0; i < 5; ++i) {
        runRounds(test, 1);
        QCOMPARE(test.getBuffer()[25 * 50 + 40], 0xFF000000U); // c = (0, 0)
    }
}

void tst_mandel::paletteReturnsAfter256Runs()
{
    mandel test(0);
    QVERIFY(test.setup(32, 32));
    runRounds(test, 1);
    const QByteArray first = digestOf(test);
    runRounds(test, 1);
    QVERIFY(digestOf(test) != first);
    runRounds(test, 255);
    QCOMPARE(digestOf(test), first);
}

void tst_mandel::redWraps()
{
    mandel test(0);
    QVERIFY(test.setup(1, 1));
    // The pixel shows entry 1 of the turned palette: after 32 runs the fresh entry 33, whose red is
    // 132 + 128 = 260.
    runRounds(test, 32);
    QCOMPARE(test.getBuffer()[0] >> 16 & 0xFFU, 4U);
    QCOMPARE(test.getBuffer()[0] >> 24, 255U);
}

void tst_mandel::setupRestartsThePalette()
{
    mandel test(0);
    QVERIFY(test.setup(20, 10));
    runRounds(test, 1);
    const QByteArray first = digestOf(test);
    runRounds(test, 6);
    QVERIFY(test.setup(20, 10));
    for (int i = 0; i < 200; ++i)
        QCOMPARE(test.getBuffer()[i], 0xFF000000U);
    runRounds(test, 1);
    QCOMPARE(digestOf(test), first);
}

void tst_mandel::failedSetup()
{
    mandel test(1);
    QVERIFY(!test.setup(0, 10));
    QVERIFY(!test.getBuffer());
}

QTEST_APPLESS_MAIN(tst_mandel)
#include "tst_mandel.moc"
