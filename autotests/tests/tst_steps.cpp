// SPDX-License-Identifier: GPL-3.0-or-later

// Which work of a round stands in which of its steps. Only run is timed, so a step that moves into
// it or out of it makes results that cannot be compared, and the frames do not tell: they are the
// same when the round is over.

#include "rounds.h"
#include "tests/colors.h"
#include "tests/crc32.h"
#include "tests/knownFrames.h"
#include "tests/lines.h"
#include "tests/mandel.h"
#include "tests/motionBlur.h"
#include "tests/rotozoom.h"
#include "tests/shellsort.h"
#include "tests/suite.h"
#include "tests/suiteFacts.h"
#include "tests/vertex.h"
#include "tiles.h"

#include <QImage>
#include <QtTest>

#include <algorithm>
#include <cstring>
#include <memory>

namespace
{

using maker = std::unique_ptr<testBase> (*)();

template <typename workload, auto... arguments> std::unique_ptr<testBase> made()
{
    return std::make_unique<workload>(arguments...);
}

template <quint32 mode> std::unique_ptr<testBase> madeRotozoom()
{
    return std::make_unique<rotozoom>(nullptr, mode);
}

std::vector<float> transformedOf(const vertex &test)
{
    const auto count = std::size_t(test.getPointCount()) * std::size_t(test.getCopies()) * 4;
    std::vector<float> numbers(count);
    std::memcpy(numbers.data(), test.getTransformed(), count * sizeof(float));
    return numbers;
}

} // namespace

Q_DECLARE_METATYPE(maker)

class tst_steps : public QObject
{
    Q_OBJECT

private slots:
    void onlyRunDraws_data();
    void onlyRunDraws();
    void runMovesOn_data();
    void runMovesOn();
    void mandelTurnsItsPaletteBefore();
    void linesAreRandomInTheRun();
    void motionBlurStampsBefore();
    void shellsortCopiesBefore();
    void vertexClearsBefore();
    void vertexDrawsAfter();
    void vertexTurnsBefore();
    void vertexTransformsInTheRun();
};

/// The steps around the run do nothing to the frame. A test of which that is not true stands in the
/// list, and has functions of its own below.
void tst_steps::onlyRunDraws_data()
{
    const QStringList ownSteps = {
        QStringLiteral("motion blur"),
        QStringLiteral("shellsort"),
        QStringLiteral("rle compress/uncompress"),
        QStringLiteral("zlib uncompress"),
        QStringLiteral("vertex"),
        QStringLiteral("vertex (multicore)"),
    };
    QTest::addColumn<int>("index");
    int index = 0;
    for (const testFacts &test : suiteFacts()) {
        if (!ownSteps.contains(QString::fromUtf8(test.name)))
            QTest::newRow(test.name) << index;
        ++index;
    }
}

void tst_steps::onlyRunDraws()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    QVERIFY(test->setup(64, 48));
    for (int round = 0; round < 3; ++round) {
        paint(*test, mark);
        test->preRun();
        QVERIFY(isAll(frameOf(*test), mark));
        test->run();
        const frame drawn = frameOf(*test);
        QVERIFY(!isAll(drawn, mark));
        test->postRun();
        QVERIFY(frameOf(*test) == drawn);
    }
}

/// What changes from frame to frame changes in the run.
void tst_steps::runMovesOn_data()
{
    QTest::addColumn<maker>("make");
    QTest::newRow("rotozoom dithered") << maker(madeRotozoom<2>);
    QTest::newRow("rotozoom linear") << maker(madeRotozoom<3>);
    QTest::newRow("rotozoom last pixel") << maker(madeRotozoom<9>);
    QTest::newRow("colors") << maker(made<colors, 0U>);
    QTest::newRow("crc32") << maker(made<crc32, 0U>);
}

void tst_steps::runMovesOn()
{
    QFETCH(maker, make);
    const auto alone = make();
    const auto inRounds = make();
    QVERIFY(alone->setup(64, 48));
    QVERIFY(inRounds->setup(64, 48));
    for (int round = 0; round < 3; ++round) {
        const frame before = frameOf(*alone);
        alone->run();
        QVERIFY(frameOf(*alone) != before);
        inRounds->preRun();
        inRounds->preRun();
        inRounds->run();
        inRounds->postRun();
        inRounds->postRun();
        QVERIFY(frameOf(*inRounds) == frameOf(*alone));
    }
}

void tst_steps::mandelTurnsItsPaletteBefore()
{
    mandel test(0);
    QVERIFY(test.setup(64, 48));
    runRounds(test, 1);
    const frame first = frameOf(test);
    test.run();
    QVERIFY(frameOf(test) == first);
    test.preRun();
    test.run();
    QVERIFY(frameOf(test) != first);

    mandel other(0);
    QVERIFY(other.setup(64, 48));
    other.preRun();
    other.preRun();
    other.run();
    QVERIFY(frameOf(other) == frameOf(test));
}

void tst_steps::linesAreRandomInTheRun()
{
    lines test;
    const auto nextAfter = [&test](void (lines::*step)()) {
        std::srand(5);
        (test.*step)();
        return std::rand();
    };
    std::srand(5);
    const int untouched = std::rand();
    QVERIFY(test.setup(64, 48));
    QCOMPARE(nextAfter(&lines::preRun), untouched);
    QVERIFY(nextAfter(&lines::run) != untouched);
    QCOMPARE(nextAfter(&lines::postRun), untouched);
}

void tst_steps::motionBlurStampsBefore()
{
    std::srand(7);
    motionBlur test(0);
    QVERIFY(test.setup(640, 480));
    paint(test, black);
    test.preRun();
    const frame stamped = frameOf(test);
    // Whole dots of pure colours, and nothing smeared yet.
    QVERIFY(!isAll(stamped, black));
    QVERIFY(std::all_of(stamped.begin(), stamped.end(), [](quint32 pixel) {
        return pixel == black || (pixel & 0xFFFF00FFU) == 0xFFFF0000U;
    }));
    // A black frame stays black: the run stamps nothing.
    paint(test, black);
    test.run();
    QVERIFY(isAll(frameOf(test), black));
    // A frame of one colour does not: the weights add up to 255 of 256.
    paint(test, 0xFF808080U);
    test.run();
    const frame smeared = frameOf(test);
    QCOMPARE(smeared[640 * 240 + 320], 0xFF7F7F7FU);
    test.postRun();
    QVERIFY(frameOf(test) == smeared);
}

/// Without a run, the round shows the words unsorted.
void tst_steps::shellsortCopiesBefore()
{
    const QImage picture(QStringLiteral(":/data/pic4_512_512.png"));
    shellsort test;
    QVERIFY(test.setup(512, 512));
    for (int round = 0; round < 2; ++round) {
        paint(test, mark);
        test.preRun();
        QVERIFY(isAll(frameOf(test), mark));
        test.postRun();
        for (int y = 0; y < 512; y += 7) {
            for (int x = 0; x < 512; ++x)
                QCOMPARE(test.getBuffer()[y * 512 + x], picture.pixel(x, y) | black);
        }
        test.preRun();
        paint(test, mark);
        test.run();
        QVERIFY(isAll(frameOf(test), mark));
        test.postRun();
    }
}

void tst_steps::vertexClearsBefore()
{
    vertex test(0);
    QVERIFY(test.setup(320, 240));
    runRounds(test, 1);
    paint(test, mark);
    test.preRun();
    QVERIFY(isAll(frameOf(test), black));
    paint(test, mark);
    test.run();
    QVERIFY(isAll(frameOf(test), mark));
}

/// The dots are drawn over what is there, when the run is over.
void tst_steps::vertexDrawsAfter()
{
    vertex test(0);
    QVERIFY(test.setup(320, 240));
    test.preRun();
    test.run();
    paint(test, mark);
    test.postRun();
    const frame drawn = frameOf(test);
    const auto marks = std::count(drawn.begin(), drawn.end(), mark);
    QVERIFY(marks > 0 && marks < std::ptrdiff_t(drawn.size()));
    QCOMPARE(std::count(drawn.begin(), drawn.end(), black), std::ptrdiff_t(0));
}

void tst_steps::vertexTurnsBefore()
{
    vertex test(0);
    QVERIFY(test.setup(32, 24));
    runRounds(test, 1);
    const auto first = transformedOf(test);
    test.run();
    QVERIFY(transformedOf(test) == first);

    vertex twice(0);
    QVERIFY(twice.setup(32, 24));
    twice.preRun();
    twice.preRun();
    twice.run();
    runRounds(test, 1);
    QVERIFY(transformedOf(test) != first);
    QVERIFY(transformedOf(twice) == transformedOf(test));
}

void tst_steps::vertexTransformsInTheRun()
{
    vertex test(0);
    QVERIFY(test.setup(32, 24));
    runRounds(test, 1);
    const auto first = transformedOf(test);
    test.preRun();
    QVERIFY(transformedOf(test) == first);
    test.run();
    const auto second = transformedOf(test);
    QVERIFY(second != first);
    test.postRun();
    QVERIFY(transformedOf(test) == second);
}

QTEST_APPLESS_MAIN(tst_steps)
#include "tst_steps.moc"
