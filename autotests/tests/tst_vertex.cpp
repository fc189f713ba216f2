// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/vertex.h"

#include "rounds.h"

#include <QFile>
#include <QPoint>
#include <QtTest>

#include <algorithm>
#include <array>
#include <cmath>

namespace
{

using vector = std::array<double, 4>;

constexpr int pointCount = 10242;

std::vector<vector> cloudOfTheFile()
{
    QFile file(QStringLiteral(":/data/wPoints.txt"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    std::vector<vector> cloud;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QList<QByteArray> numbers = line.trimmed().split(' ');
        if (numbers.size() == 3) {
            cloud.push_back({numbers[0].toDouble() * 0.01, numbers[1].toDouble() * 0.01,
                             (numbers[2].toDouble() - 150) * 0.01, 0});
        }
    }
    return cloud;
}

/// A point after @p rounds rounds in a frame of the shape @p aspect, at scale @p scale; in double
/// precision, as three turns one after the other and the projection written out.
vector expectedPoint(const vector &point, int rounds, double aspect, double scale)
{
    const double a = -0.01 * rounds;
    const double b = 0.02 * rounds;
    const double turnedX = std::cos(b) * point[0] + std::sin(b) * point[2];
    const double turnedZ = -std::sin(b) * point[0] + std::cos(b) * point[2];
    const double x = turnedX * scale;
    const double y = (std::cos(a) * point[1] - std::sin(a) * turnedZ) * scale;
    const double z = (std::sin(a) * point[1] + std::cos(a) * turnedZ + 0.01) * scale;
    const double top = 0.57735026 * 0.1;
    return {0.1 / (aspect * top) * x, 0.1 / top * y, -60.1 / 59.9 * z, -12.0 / 59.9 * z};
}

vector componentsOf(const vector4 &point)
{
    return {double(point.x), double(point.y), double(point.z), double(point.w)};
}

bool isClose(const vector4 &actual, const vector &expected)
{
    for (std::size_t k = 0; k < 4; ++k) {
        if (std::fabs(componentsOf(actual)[k] - expected[k]) > 1e-5)
            return false;
    }
    return true;
}

/// The dots of copy 0, written down anew.
frame expectedDots(const vertex &test)
{
    const int width = test.getWidth();
    const int height = test.getHeight();
    frame pixels = blackFrame(width, height);
    for (int j = 0; j < test.getPointCount(); ++j) {
        const vector4 &v = test.getTransformed()[j];
        if (v.z < 0.1F)
            continue;
        const float inverse = 1.0F / v.z;
        const auto left = int(float(double(inverse) * double(v.x) * (width * 0.5) + width * 0.5));
        const auto top = int(float(double(inverse) * double(v.y) * (height * 0.5) + height * 0.5));
        const quint32 grey = quint32(std::min(255, int(inverse * 224.0F)));
        for (int y = std::max(top, 0); y < std::min(top + height / 240, height); ++y) {
            for (int x = std::max(left, 0); x < std::min(left + width / 320, width); ++x)
                pixels[std::size_t(y * width + x)] = black + grey * 0x010101U;
        }
    }
    return pixels;
}

} // namespace

class tst_vertex : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void names();
    void reports();
    void singleCore_data();
    void singleCore();
    void multicoreScales();
    void frames_data();
    void frames();
    void dots_data();
    void dots();
    void smallFramesStayBlack_data();
    void smallFramesStayBlack();
    void setupRestarts();

private:
    std::vector<vector> cloud;
    /// Set up once for all rows of dots.
    vertex dotTest{0};
};

void tst_vertex::initTestCase()
{
    cloud = cloudOfTheFile();
    QCOMPARE(int(cloud.size()), pointCount);
}

void tst_vertex::names()
{
    QCOMPARE(vertex(0).getName(), QStringLiteral("vertex"));
    QCOMPARE(vertex(1).getName(), QStringLiteral("vertex (multicore)"));
    QVERIFY(!vertex(0).isMulticore());
    QVERIFY(vertex(1).isMulticore());
}

void tst_vertex::reports()
{
    vertex test(0);
    QVERIFY(test.setup(10, 10));
    QCOMPARE(test.getUnit(), QStringLiteral("MVertices"));
    QCOMPARE(test.getPointCount(), pointCount);
    QCOMPARE(test.getCopies(), 512);
    QCOMPARE(test.getWork(), 5.243904F);
    QVERIFY(frameOf(test) == blackFrame(10, 10));
    QVERIFY(!test.setup(0, 480));
    QVERIFY(!test.getBuffer());
    QVERIFY(!test.getTransformed());
}

void tst_vertex::singleCore_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("rounds");
    QTest::addRow("first round") << 382 << 216 << 1;
    QTest::addRow("later") << 20 << 30 << 25;
}

void tst_vertex::singleCore()
{
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, rounds);
    vertex test(0);
    QVERIFY(test.setup(width, height));
    runRounds(test, rounds);
    for (int copy = 0; copy < 512; copy += 73) {
        for (int j = 0; j < pointCount; ++j) {
            const vector expected = expectedPoint(cloud[std::size_t(j)], rounds,
                                                  double(width) / height, 1 - copy / 512.0);
            QVERIFY(isClose(test.getTransformed()[copy * pointCount + j], expected));
        }
    }
}

/// Whatever the threads do to each other, each component of a copy has one scale, which is a step
/// of the count-down. Two components may have two: one thread can read between two stores of the
/// other.
void tst_vertex::multicoreScales()
{
    vertex test(1);
    QVERIFY(test.setup(100, 100));
    runRounds(test, 1);
    std::vector<vector> whole;
    for (const vector &point : cloud)
        whole.push_back(expectedPoint(point, 1, 1, 1));
    // Each component is told best by the point where it is largest.
    std::array<std::size_t, 4> probes{};
    for (std::size_t k = 0; k < 4; ++k) {
        const auto largest =
            std::max_element(whole.begin(), whole.end(), [k](const vector &a, const vector &b) {
                return std::fabs(a[k]) < std::fabs(b[k]);
            });
        probes[k] = std::size_t(largest - whole.begin());
    }
    for (int copy = 0; copy < 512; ++copy) {
        const vector4 *points = test.getTransformed() + copy * pointCount;
        vector scale{};
        for (std::size_t k = 0; k < 4; ++k) {
            const double ratio = componentsOf(points[probes[k]])[k] / whole[probes[k]][k];
            const double steps = std::round((1 - ratio) * 512);
            QVERIFY(steps >= 0 && steps < 512);
            scale[k] = 1 - steps / 512;
        }
        for (std::size_t j = 0; j < cloud.size(); j += 37) {
            vector expected{};
            for (std::size_t k = 0; k < 4; ++k)
                expected[k] = whole[j][k] * scale[k];
            QVERIFY(isClose(points[j], expected));
        }
    }
}

void tst_vertex::frames_data()
{
    QTest::addColumn<quint32>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const quint32 mode : {0U, 1U}) {
        QTest::addRow("mode %u, 321x241", mode) << mode << 321 << 241;
        QTest::addRow("mode %u, larger dots", mode) << mode << 1000 << 800;
        QTest::addRow("mode %u, high", mode) << mode << 320 << 1200;
    }
}

void tst_vertex::frames()
{
    QFETCH(quint32, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    vertex test(mode);
    QVERIFY(test.setup(width, height));
    for (int round = 0; round < 3; ++round) {
        runRounds(test, 1);
        QVERIFY(frameOf(test) == expectedDots(test));
        QVERIFY(frameOf(test) != blackFrame(width, height));
    }
}

void tst_vertex::dots_data()
{
    QTest::addColumn<float>("x");
    QTest::addColumn<float>("y");
    QTest::addColumn<float>("z");
    // Of the dot, with a side of two pixels, in a frame of 640 x 480.
    QTest::addColumn<QPoint>("corner");
    QTest::addColumn<quint32>("grey");
    const QPoint none(-1, -1);
    const QPoint centre(320, 240);
    QTest::addRow("on the near plane") << 0.0F << 0.0F << 0.1F << centre << 255U;
    QTest::addRow("just before it") << 0.0F << 0.0F << std::nextafter(0.1F, 0.0F) << none << 0U;
    QTest::addRow("well before it") << 0.0F << 0.0F << 0.05F << none << 0U;
    QTest::addRow("at the eye") << 0.0F << 0.0F << 0.0F << none << 0U;
    QTest::addRow("behind") << 0.0F << 0.0F << -1.0F << none << 0U;
    QTest::addRow("nowhere") << 0.0F << 0.0F << std::nanf("") << none << 0U;
    QTest::addRow("grey") << 0.0F << 0.0F << 1.0F << centre << 224U;
    QTest::addRow("dark") << 0.0F << 0.0F << 3.0F << centre << 74U;
    QTest::addRow("still white") << 0.0F << 0.0F << 0.875F << centre << 255U;
    QTest::addRow("to the right") << 0.5F << 0.0F << 2.0F << QPoint(400, 240) << 112U;
    QTest::addRow("up and left") << -0.5F << -1.0F << 2.0F << QPoint(240, 120) << 112U;
    QTest::addRow("truncated") << 0.004F << 0.007F << 1.0F << QPoint(321, 241) << 224U;
    QTest::addRow("last column") << 0.998F << 0.0F << 1.0F << QPoint(639, 240) << 224U;
    QTest::addRow("last row") << 0.0F << 0.998F << 1.0F << QPoint(320, 479) << 224U;
    QTest::addRow("beyond the last column") << 1.0F << 0.0F << 1.0F << none << 0U;
    QTest::addRow("beyond the last row") << 0.0F << 1.0F << 1.0F << none << 0U;
    QTest::addRow("above the first row") << 0.0F << -1.1F << 1.0F << none << 0U;
}

/// One point of copy 0 where it is wanted, the others behind the eye.
void tst_vertex::dots()
{
    QFETCH(float, x);
    QFETCH(float, y);
    QFETCH(float, z);
    QFETCH(QPoint, corner);
    QFETCH(quint32, grey);
    if (!dotTest.getBuffer()) {
        QVERIFY(dotTest.setup(640, 480));
        dotTest.run();
    }
    dotTest.preRun();
    auto *points = const_cast<vector4 *>(dotTest.getTransformed());
    std::fill_n(points, pointCount, vector4{0, 0, -1, 0});
    points[pointCount - 1] = {x, y, z, 0};
    // The next copy is not drawn.
    std::fill_n(points + pointCount, pointCount, vector4{0.2F, 0.2F, 1, 0});
    dotTest.postRun();
    frame expected = blackFrame(640, 480);
    for (const QPoint &pixel :
         {corner, corner + QPoint(1, 0), corner + QPoint(0, 1), corner + QPoint(1, 1)}) {
        if (corner.x() >= 0 && pixel.x() < 640 && pixel.y() < 480)
            expected[std::size_t(pixel.y() * 640 + pixel.x())] = black + grey * 0x010101U;
    }
    QVERIFY(frameOf(dotTest) == expected);
}

void tst_vertex::smallFramesStayBlack_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addRow("narrow") << 319 << 400;
    QTest::addRow("low") << 400 << 239;
    for (const frameSize &size : {frameSize{1, 1}, {3, 2}, {1, 5000}})
        QTest::addRow("%dx%d", size.width, size.height) << size.width << size.height;
}

void tst_vertex::smallFramesStayBlack()
{
    QFETCH(int, width);
    QFETCH(int, height);
    vertex test(0);
    QVERIFY(test.setup(width, height));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == blackFrame(width, height));
}

void tst_vertex::setupRestarts()
{
    vertex test(0);
    QVERIFY(test.setup(400, 300));
    runRounds(test, 1);
    const frame first = frameOf(test);
    runRounds(test, 4);
    QVERIFY(frameOf(test) != first);
    QVERIFY(test.setup(400, 300));
    runRounds(test, 1);
    QVERIFY(frameOf(test) == first);
}

QTEST_APPLESS_MAIN(tst_vertex)
#include "tst_vertex.moc"
