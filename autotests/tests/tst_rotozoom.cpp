// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/rotozoom.h"

#include "rounds.h"

#include <QImage>
#include <QtTest>

#include <omp.h>

#include <cmath>

namespace
{

const char *const modeNames[] = {
    "no",
    "no (wide)",
    "dithered",
    "linear",
    "linear (multicore)",
    "linear float",
    "linear f32 (multicore)",
    "linear f64 (multicore)",
    "linear (multicore-selected)",
    "last pixel",
    "last pixel (multicore)",
    "last pixel float",
    "last pixel f32 (multicore)",
    "last pixel f64 (multicore)",
};

std::unique_ptr<QByteArray> selectionOf(const char *bytes, int size)
{
    return std::make_unique<QByteArray>(bytes, size);
}

/// A test whose mode 8, if it is that, has all threads selected.
std::unique_ptr<rotozoom> testOf(quint32 mode)
{
    auto selection = mode == 8 ? std::make_unique<QByteArray>(1024, '\1') : nullptr;
    return std::make_unique<rotozoom>(nullptr, mode, std::move(selection));
}

/// The animation, written down anew from its definition, in 64-bit coordinates that wrap only where
/// a texel is looked up.
class animation
{
public:
    animation(quint32 m, int w, int h)
        : mode(m),
          width(w),
          height(h),
          limit(512 * 4096.0 / w),
          zoom(limit),
          picture(QStringLiteral(":/data/pic4_512_512.png")),
          pixels(blackFrame(w, h))
    {
    }

    void render()
    {
        zoom += step;
        angle += 0.02;
        if (zoom > limit || zoom < 0)
            step = -step;
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        const double hw = -0.5 * width;
        const double hh = -0.5 * height;
        const qint64 u0 = whole(((hh * c - hw * s) * zoom / 4096 + 256) * 4096);
        const qint64 v0 = whole(((hh * s + hw * c) * zoom / 4096 + 256) * 4096);
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const qint64 u = u0 + y * whole(c * zoom) + x * whole(-s * zoom);
                const qint64 v = v0 + y * whole(s * zoom) + x * whole(c * zoom);
                quint32 &pixel = pixels[std::size_t(y) * std::size_t(width) + std::size_t(x)];
                pixel = pixelOf(u, v, x, y, pixel);
            }
        }
    }

    double getZoom() const { return zoom; }
    const frame &getPixels() const { return pixels; }

private:
    static qint64 whole(double value) { return qint64(std::trunc(value)); }

    quint32 texel(qint64 u, qint64 v) const
    {
        return black | picture.pixel(int(u >> 12 & 511), int(v >> 12 & 511));
    }

    quint32 pixelOf(qint64 u, qint64 v, int x, int y, quint32 old) const
    {
        if (mode < 2)
            return texel(u, v);
        if (mode == 2) {
            const int du[2][2] = {{1024, 2048}, {3072, 0}};
            const int dv[2][2] = {{0, 3072}, {2048, 1024}};
            return texel(u + du[y % 2][x % 2], v + dv[y % 2][x % 2]);
        }
        quint32 result = 255;
        for (int shift = 16; shift >= 0; shift -= 8) {
            const quint32 value = mode < 9
                                      ? linear(u, v, shift)
                                      : (channel(texel(u, v), shift) + 7 * channel(old, shift)) / 8;
            result = result * 256 + value;
        }
        return result;
    }

    static quint32 channel(quint32 pixel, int shift) { return pixel >> shift & 255U; }

    quint32 linear(qint64 u, qint64 v, int shift) const
    {
        const qint64 fu = u & 4095;
        const qint64 fv = v & 4095;
        const qint64 weights[] = {(4095 - fv) * (4095 - fu), fu * (4095 - fv), (4095 - fu) * fv,
                                  fv * fu};
        qint64 exact = 0;
        float rounded = 0;
        for (int i = 0; i < 4; ++i) {
            const quint32 value = channel(texel(u + i % 2 * 4096, v + i / 2 * 4096), shift);
            exact += weights[i] * value;
            rounded += float(weights[i]) * float(value);
        }
        if (mode == 5 || mode == 6)
            return quint32(rounded / 16777216.0F);
        return quint32(exact / 16777216);
    }

    quint32 mode;
    int width;
    int height;
    double limit;
    double zoom;
    double step = -10.24;
    double angle = 0;
    QImage picture;
    frame pixels;
};

frame framesAfter(quint32 mode, int width, int height, int runs)
{
    const auto test = testOf(mode);
    if (!test->setup(width, height))
        return {};
    runRounds(*test, runs);
    return frameOf(*test);
}

} // namespace

class tst_rotozoom : public QObject
{
    Q_OBJECT

private slots:
    void names();
    void selectionInTheName();
    void reports();
    void frames_data();
    void frames();
    void modesThatAgree_data();
    void modesThatAgree();
    void threadsDoNotMatter_data();
    void threadsDoNotMatter();
    void zoomOvershoots_data();
    void zoomOvershoots();
    void whiteComesOutAs254();
    void unselectedThreadsAreRed();
    void setupRestarts();
    void unknownMode();
};

void tst_rotozoom::names()
{
    for (quint32 mode = 0; mode < 14; ++mode) {
        QCOMPARE(rotozoom(nullptr, mode).getName(),
                 QStringLiteral("rotozoom '%1'").arg(QLatin1String(modeNames[mode])));
        QCOMPARE(rotozoom(nullptr, mode).isMulticore(), mode == 4 || mode == 10);
    }
    QCOMPARE(rotozoom(nullptr, 14).getName(), QStringLiteral("rotozoom 'error'"));
}

void tst_rotozoom::selectionInTheName()
{
    QCOMPARE(rotozoom(nullptr, 8, selectionOf("\1\1\0\0", 4)).getName(),
             QStringLiteral("rotozoom 'linear (multicore-selected)' affinity [XX__]"));
    QCOMPARE(rotozoom(nullptr, 0, selectionOf("", 0)).getName(),
             QStringLiteral("rotozoom 'no' affinity []"));
}

void tst_rotozoom::reports()
{
    rotozoom test(nullptr, 0);
    QVERIFY(test.setup(1920, 1080));
    QCOMPARE(test.getWork(), 2.0736F);
    QCOMPARE(test.getUnit(), QStringLiteral("MPixel"));
    QVERIFY(!test.isSingleOnly());
    QVERIFY(!test.setup(0, 480));
    QVERIFY(!test.getBuffer());
}

void tst_rotozoom::frames_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (quint32 mode = 0; mode < 14; ++mode) {
        for (const frameSize &size : oddSizes) {
            QTest::addRow("%s, %dx%d", modeNames[mode], size.width, size.height)
                << mode << size.width << size.height;
        }
        for (const int width : {2, 4, 5, 6, 7})
            QTest::addRow("%s, %dx3", modeNames[mode], width) << mode << width << 3;
    }
}

void tst_rotozoom::frames()
{
    QFETCH(quint32, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    const auto test = testOf(mode);
    QVERIFY(test->setup(width, height));
    QVERIFY(frameOf(*test) == blackFrame(width, height));
    animation expected(mode, width, height);
    for (int i = 0; i < 3; ++i) {
        runRounds(*test, 1);
        expected.render();
        QVERIFY(frameOf(*test) == expected.getPixels());
    }
}

void tst_rotozoom::modesThatAgree_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<quint32>("model");
    QTest::addRow("wide") << 1U << 0U;
    for (const quint32 mode : {4U, 7U, 8U})
        QTest::addRow("%s", modeNames[mode]) << mode << 3U;
    QTest::addRow("single precision") << 6U << 5U;
    for (const quint32 mode : {10U, 11U, 12U, 13U})
        QTest::addRow("%s", modeNames[mode]) << mode << 9U;
}

void tst_rotozoom::modesThatAgree()
{
    QFETCH(quint32, mode);
    QFETCH(quint32, model);
    QVERIFY(framesAfter(mode, 123, 77, 20) == framesAfter(model, 123, 77, 20));
}

void tst_rotozoom::threadsDoNotMatter_data()
{
    QTest::addColumn<quint32>("mode");
    for (const quint32 mode : {4U, 6U, 7U, 8U, 10U, 12U, 13U})
        QTest::addRow("%s", modeNames[mode]) << mode;
}

void tst_rotozoom::threadsDoNotMatter()
{
    QFETCH(quint32, mode);
    const int threads = omp_get_max_threads();
    omp_set_num_threads(1);
    const frame alone = framesAfter(mode, 61, 47, 4);
    for (const int count : {2, 3, 7}) {
        omp_set_num_threads(count);
        QVERIFY(framesAfter(mode, 61, 47, 4) == alone);
    }
    omp_set_num_threads(threads);
}

void tst_rotozoom::zoomOvershoots_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("limit");
    // One texel for each pixel, and one for eight of them.
    QTest::addRow("as wide as the picture") << 512 << 4096.0;
    QTest::addRow("four times as wide") << 4096 << 512.0;
    QTest::addRow("no multiple") << 1000 << 2097.152;
}

/// The zoom goes down from its limit to 0 and up again, a step beyond at either end.
void tst_rotozoom::zoomOvershoots()
{
    QFETCH(int, width);
    QFETCH(double, limit);
    const int swing = int(std::ceil(limit / 10.24)) + 1;
    rotozoom test(nullptr, 0);
    QVERIFY(test.setup(width, 1));
    animation expected(0, width, 1);
    double lowest = limit;
    double highest = 0;
    for (int i = 0; i < 4 * swing; ++i) {
        runRounds(test, 1);
        expected.render();
        QVERIFY(frameOf(test) == expected.getPixels());
        lowest = std::min(lowest, expected.getZoom());
        highest = std::max(highest, expected.getZoom());
    }
    QVERIFY(lowest < 0 && lowest > -10.25);
    QVERIFY(highest > limit && highest < limit + 10.25);
}

void tst_rotozoom::whiteComesOutAs254()
{
    const frame white(512 * 512, 0xFFFFFFFFU);
    const textureView texture = {white.data(), 512};
    for (quint32 i = 0; i < 100; ++i) {
        const texturePoint at = {i * 1021, i * 4093 + 0xFFFFF000U};
        QCOMPARE(linearTexel<quint32>::pixel(texture, at, 0), 0xFFFEFEFEU);
        QCOMPARE(linearTexel<float>::pixel(texture, at, 0), 0xFFFEFEFEU);
        QCOMPARE(linearTexel<double>::pixel(texture, at, 0), 0xFFFEFEFEU);
    }
}

/// The schedule gives each of two threads one block of rows.
void tst_rotozoom::unselectedThreadsAreRed()
{
    constexpr int width = 40;
    constexpr int height = 20;
    const int threads = omp_get_max_threads();
    omp_set_num_threads(2);
    const frame linear = framesAfter(3, width, height, 1);
    const frame red(width * height / 2, 0xFFFF0000U);

    rotozoom second(nullptr, 8, selectionOf("\0\1", 2));
    QVERIFY(second.setup(width, height));
    runRounds(second, 1);
    QVERIFY(std::equal(red.begin(), red.end(), second.getBuffer()));
    QVERIFY(std::equal(linear.begin() + width * height / 2, linear.end(),
                       second.getBuffer() + width * height / 2));

    // Too short a selection, and none, count as not selected.
    rotozoom first(nullptr, 8, selectionOf("\1", 1));
    QVERIFY(first.setup(width, height));
    runRounds(first, 1);
    QVERIFY(std::equal(red.begin(), red.end(), first.getBuffer() + width * height / 2));
    rotozoom none(nullptr, 8);
    QVERIFY(none.setup(width, height));
    runRounds(none, 1);
    QVERIFY(frameOf(none) == frame(width * height, 0xFFFF0000U));
    omp_set_num_threads(threads);
}

void tst_rotozoom::setupRestarts()
{
    rotozoom test(nullptr, 9);
    QVERIFY(test.setup(50, 40));
    runRounds(test, 7);
    QVERIFY(test.setup(60, 30));
    QVERIFY(frameOf(test) == blackFrame(60, 30));
    runRounds(test, 3);
    QVERIFY(frameOf(test) == framesAfter(9, 60, 30, 3));
    test.release();
    QVERIFY(!test.getBuffer());
}

void tst_rotozoom::unknownMode()
{
    rotozoom test(nullptr, 99);
    QVERIFY(test.setup(5, 4));
    runRounds(test, 2);
    QVERIFY(frameOf(test) == blackFrame(5, 4));
}

QTEST_APPLESS_MAIN(tst_rotozoom)
#include "tst_rotozoom.moc"
