// SPDX-License-Identifier: GPL-3.0-or-later

// How many of the faults that a run may have are named. Each row puts in one kind of fault many
// times over, always the same ones, prints how many were named, and wants at least as many as a
// reader of the documents expects.

#include "data/verdict.h"
#include "simulatedRounds.h"
#include "support/meddledTest.h"
#include "tests/frameCheck.h"

#include <QtTest>

#include <random>

namespace
{

struct rate {
    int tried = 0;
    int named = 0;

    void count(bool isNamed)
    {
        ++tried;
        named += isNamed ? 1 : 0;
    }
};

using fault = std::function<rate()>;

constexpr int smallWidth = 321; // of the smallest known frames
constexpr int timesEach = 100;
constexpr double usualNoise = 0.004;

bool has(const verdict &found, remarkKind kind)
{
    return std::any_of(found.remarks.begin(), found.remarks.end(),
                       [kind](const remark &one) { return one.kind == kind; });
}

// Faults of the work: each in the smallest known frame of every test.

using damage = std::function<void(testBase &drawn, const knownFrame &known, std::mt19937 &random)>;

/// Does @p damage after the last round. What leaves the frame as it is was no fault.
rate damagedFrames(const damage &done, int timesPerTest, bool isMulticoreOnly = false)
{
    rate found;
    std::mt19937 random(1);
    for (const knownFrame &known : knownFrames()) {
        const auto isWanted = [&] {
            return known.width == smallWidth && known.threads < 2
                   && (!isMulticoreOnly || suiteTest(known.test)->isMulticore());
        };
        for (int i = 0; i < timesPerTest && isWanted(); ++i) {
            bool isChanged = false;
            meddledTest test(suiteTest(known.test), [&](testBase &drawn, int round) {
                if (round != known.rounds)
                    return;
                const QByteArray before = digestOf(drawn);
                done(drawn, known, random);
                isChanged = digestOf(drawn) != before;
            });
            const digestVerdict verdict = checkFrame(test, known);
            if (isChanged)
                found.count(verdict == digestVerdict::wrong);
        }
    }
    return found;
}

void flipOneBit(testBase &drawn, const knownFrame &known, std::mt19937 &random)
{
    const std::size_t pixels = static_cast<std::size_t>(known.width * known.height);
    drawn.getBuffer()[random() % pixels] ^= 1U << (random() % 32);
}

/// The frame stays black in @p count lines.
void leaveOutLines(testBase &drawn, const knownFrame &known, std::mt19937 &random, int count)
{
    const int first = static_cast<int>(random() % static_cast<unsigned>(known.height - count + 1));
    std::fill_n(drawn.getBuffer() + first * known.width, count * known.width, opaqueBlack);
}

// Faults of the measurement: in rounds as a quiet machine would measure them.

/// A clock that counts @p rate times as fast, over 8 s of rounds of @p seconds.
rate skewedClock(double rateOfClock, double seconds)
{
    rate found;
    for (quint32 seed = 0; seed < timesEach; ++seed) {
        simulatedRounds simulation(seed, 10 + seed);
        const auto spans = simulation.spans(static_cast<int>(8 / seconds), seconds, usualNoise);
        const testRun test = testOf(QStringLiteral("t"), simulation.measured(spans, rateOfClock));
        found.count(has(verdictOf(test, {}), remarkKind::clocksDisagree));
    }
    return found;
}

/// One to three first rounds of 50 that take @p excess longer.
rate slowFirst(double excess)
{
    rate found;
    for (quint32 seed = 0; seed < timesEach; ++seed) {
        simulatedRounds simulation(seed);
        auto spans = simulation.spans(50, 0.16, usualNoise);
        std::for_each_n(spans.begin(), 1 + seed % 3,
                        [excess](double &span) { span *= 1 + excess; });
        const testRun test = testOf(QStringLiteral("t"), simulation.measured(spans));
        found.count(has(verdictOf(test, {}), remarkKind::slowFirstRounds));
    }
    return found;
}

/// All threads but @p left of 4 were lost; each gives what one core gives, but for some noise.
rate lostThreads(double left)
{
    rate found;
    for (quint32 seed = 0; seed < timesEach; ++seed) {
        simulatedRounds simulation(seed);
        runRecord run;
        run.machine.threads = 4;
        for (const char *name : {"t", "t (multicore)"}) {
            const double speed = run.tests.empty() ? 1 : left;
            const auto spans = simulation.spans(50, 0.16 / speed, usualNoise);
            run.tests.push_back(testOf(QString::fromLatin1(name), simulation.measured(spans)));
        }
        run.tests.back().isMulticore = true;
        found.count(has(verdictOf(run.tests.back(), run), remarkKind::slowerThanOneCore));
    }
    return found;
}

/// Somebody who takes @p share of a processor during a test of 8 s, counted in ticks.
rate busyNeighbour(double share)
{
    rate found;
    for (quint32 seed = 0; seed < timesEach; ++seed) {
        simulatedRounds simulation(seed);
        testRun test = testOf(QStringLiteral("t"),
                              simulation.measured(simulation.spans(50, 0.16, usualNoise)));
        test.wallSeconds = 8 + 0.1 * simulation.uniform();
        test.otherProcesses =
            std::floor(100 * (share * test.wallSeconds + 0.02 * simulation.uniform())) / 100;
        found.count(has(verdictOf(test, {}), remarkKind::otherProcesses));
    }
    return found;
}

/// A neighbour who comes for one round in ten and makes it @p excess longer.
rate passingNeighbour(double excess)
{
    rate found;
    for (quint32 seed = 0; seed < timesEach; ++seed) {
        simulatedRounds simulation(seed);
        auto spans = simulation.spans(50, 0.16, usualNoise);
        for (std::size_t i = 5; i < spans.size(); i += 10)
            spans[i] *= 1 + excess;
        const verdict found1 =
            verdictOf(testOf(QStringLiteral("t"), simulation.measured(spans)), {});
        found.count(has(found1, remarkKind::outliers) || found1.level == steadiness::unsteady);
    }
    return found;
}

} // namespace

Q_DECLARE_METATYPE(fault)

class tst_catchRate : public QObject
{
    Q_OBJECT

private slots:
    void faults_data();
    void faults();
};

void tst_catchRate::faults_data()
{
    QTest::addColumn<fault>("put");
    QTest::addColumn<int>("least"); // percent; -1 where nothing may be named
    const auto row = [](const char *name, int least, const fault &put) {
        QTest::newRow(name) << put << least;
    };
    row("one wrong bit of one pixel", 100, [] { return damagedFrames(flipOneBit, 3); });
    row("one line left out", 100, [] {
        return damagedFrames(
            [](auto &drawn, auto &known, auto &random) { leaveOutLines(drawn, known, random, 1); },
            1);
    });
    row("the lines of one thread of four left out", 100, [] {
        return damagedFrames(
            [](auto &drawn, auto &known, auto &random) {
                leaveOutLines(drawn, known, random, known.height / 4);
            },
            3, true);
    });
    row("one core of four left, and slower", 100, [] { return lostThreads(0.95); });
    row("a clock 10 % fast", 100, [] { return skewedClock(1.1, 0.16); });
    row("a clock 1 % slow", 100, [] { return skewedClock(0.99, 0.16); });
    row("a clock 3 % fast, rounds of 5 ms", 100, [] { return skewedClock(1.03, 0.005); });
    row("first rounds 50 % slower", 100, [] { return slowFirst(0.5); });
    row("first rounds 10 % slower", 100, [] { return slowFirst(0.1); });
    row("first rounds 3 % slower", 90, [] { return slowFirst(0.03); });
    row("a neighbour with a whole processor", 100, [] { return busyNeighbour(1); });
    row("a neighbour with 12 % of a processor", 100, [] { return busyNeighbour(0.12); });
    row("one round in ten 30 % longer", 100, [] { return passingNeighbour(0.3); });
    // What is no fault, or too small to tell.
    row("a right clock", -1, [] { return skewedClock(1, 0.16); });
    row("a clock 0.1 % fast", -1, [] { return skewedClock(1.001, 0.16); });
    row("a clock 1 % fast, rounds of 5 ms", -1, [] { return skewedClock(1.01, 0.005); });
    row("a neighbour with 5 % of a processor", -1, [] { return busyNeighbour(0.05); });
    row("as fast as one core", -1, [] { return lostThreads(1); });
}

void tst_catchRate::faults()
{
    QFETCH(fault, put);
    QFETCH(int, least);
    const rate found = put();
    qInfo("%d tried, %d named", found.tried, found.named);
    QVERIFY(found.tried > 0);
    if (least < 0)
        QCOMPARE(found.named, 0);
    else
        QVERIFY(100 * found.named >= least * found.tried);
}

QTEST_APPLESS_MAIN(tst_catchRate)
#include "tst_catchRate.moc"
