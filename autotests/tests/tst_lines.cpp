// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/lines.h"

#include "rounds.h"

#include <QtTest>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace
{

using pixelSet = std::set<std::pair<int, int>>;

constexpr quint32 ink = 0xFF123456U;

/// The pixels of a line, written down anew from its rule.
pixelSet expectedLine(lines::point from, lines::point to)
{
    const int dx = std::max(from.x, to.x) - std::min(from.x, to.x);
    const int dy = std::min(from.y, to.y) - std::max(from.y, to.y);
    int doubled = 2 * dx + 2 * dy;
    int x = from.x;
    int y = from.y;
    pixelSet pixels = {{x, y}};
    while (x != to.x || y != to.y) {
        const bool sideways = doubled > dy;
        const bool upright = doubled < dx;
        if (sideways)
            x += to.x > from.x ? 1 : -1;
        if (upright)
            y += to.y > from.y ? 1 : -1;
        doubled += (sideways ? 2 * dy : 0) + (upright ? 2 * dx : 0);
        pixels.insert({x, y});
    }
    return pixels;
}

pixelSet inked(const testBase &test)
{
    pixelSet pixels;
    for (int i = 0; i < test.getWidth() * test.getHeight(); ++i) {
        if (test.getBuffer()[i] == ink)
            pixels.insert({i % test.getWidth(), i / test.getWidth()});
    }
    return pixels;
}

/// One batch on top of @p pixels; draws from the generator like the test.
void expectedBatch(frame &pixels, int width, int height)
{
    for (int fan = 0; fan < 109; ++fan) {
        lines::point from = {};
        from.x = std::rand() % width;
        from.y = std::rand() % height;
        const auto first = quint32(std::rand());
        const auto second = quint32(std::rand());
        for (int line = 0; line < 109; ++line) {
            lines::point to = {};
            to.x = std::rand() % width;
            to.y = std::rand() % height;
            for (const auto &[x, y] : expectedLine(from, to))
                pixels[std::size_t(y * width + x)] = black | first * 256 | second;
        }
    }
}

} // namespace

class tst_lines : public QObject
{
    Q_OBJECT

private slots:
    void reports();
    void knownLines_data();
    void knownLines();
    void allDirections();
    void frames_data();
    void frames();
    void drawsOfTheGenerator();
};

void tst_lines::reports()
{
    lines test;
    QVERIFY(test.setup(10, 10));
    QCOMPARE(test.getName(), QStringLiteral("lines"));
    QCOMPARE(test.getUnit(), QStringLiteral("KLines"));
    QCOMPARE(test.getWork(), 12.0F);
    QVERIFY(!test.isMulticore());
    QVERIFY(frameOf(test) == blackFrame(10, 10));
    QVERIFY(!test.setup(0, 480));
    QVERIFY(!test.getBuffer());
}

void tst_lines::knownLines_data()
{
    QTest::addColumn<QVector<int>>("ends");
    QTest::addColumn<QVector<int>>("pixels");
    QTest::addRow("horizontal") << QVector<int>{2, 5, 7, 5}
                                << QVector<int>{2, 5, 3, 5, 4, 5, 5, 5, 6, 5, 7, 5};
    QTest::addRow("three to one") << QVector<int>{0, 0, 3, 1}
                                  << QVector<int>{0, 0, 1, 0, 2, 1, 3, 1};
    QTest::addRow("point") << QVector<int>{4, 4, 4, 4} << QVector<int>{4, 4};
    QTest::addRow("diagonal") << QVector<int>{3, 1, 1, 3} << QVector<int>{3, 1, 2, 2, 1, 3};
}

void tst_lines::knownLines()
{
    QFETCH(QVector<int>, ends);
    QFETCH(QVector<int>, pixels);
    lines test;
    QVERIFY(test.setup(9, 7));
    test.drawLine({ends[0], ends[1]}, {ends[2], ends[3]}, ink);
    pixelSet expected;
    for (int i = 0; i < pixels.size(); i += 2)
        expected.insert({pixels[i], pixels[i + 1]});
    QVERIFY(inked(test) == expected);
}

void tst_lines::allDirections()
{
    constexpr int side = 9;
    lines test;
    for (int ends = 0; ends < side * side * side * side; ends += 7) {
        const lines::point from = {ends % side, ends / side % side};
        const lines::point to = {ends / side / side % side, ends / side / side / side};
        QVERIFY(test.setup(side, side));
        test.drawLine(from, to, ink);
        QVERIFY(inked(test) == expectedLine(from, to));
    }
}

void tst_lines::frames_data()
{
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const frameSize &size : {frameSize{1, 1}, {3, 2}, {31, 23}, {1, 500}, {64, 1}})
        QTest::addRow("%dx%d", size.width, size.height) << size.width << size.height;
}

void tst_lines::frames()
{
    QFETCH(int, width);
    QFETCH(int, height);
    lines test;
    QVERIFY(test.setup(width, height));
    std::srand(3);
    runRounds(test, 2);

    frame expected = blackFrame(width, height);
    std::srand(3);
    expectedBatch(expected, width, height);
    expectedBatch(expected, width, height);
    QVERIFY(frameOf(test) == expected);
}

/// A batch draws 109 fans of 109 lines, two numbers per end point and two per colour.
void tst_lines::drawsOfTheGenerator()
{
    lines test;
    QVERIFY(test.setup(40, 30));
    std::srand(9);
    runRounds(test, 1);
    const int next = std::rand();
    std::srand(9);
    for (int i = 0; i < 109 * (4 + 2 * 109); ++i)
        static_cast<void>(std::rand());
    QCOMPARE(next, std::rand());
}

QTEST_APPLESS_MAIN(tst_lines)
#include "tst_lines.moc"
