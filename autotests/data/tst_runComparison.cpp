// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runComparison.h"

#include "runFixtures.h"

#include <QtTest>

#include <functional>
#include <limits>

namespace
{

/// What one side of a simulated comparison measures: a run of which all rounds, or all repetitions,
/// are @p slower times as long as usual.
using side = std::function<runRecord(simulatedRounds &, double slower)>;

runRecord oneRun(simulatedRounds &simulation, int rounds, double mean, double noise)
{
    runRecord run;
    run.tests = {testOf(QStringLiteral("lines"),
                        simulation.measured(simulation.spans(rounds, mean, noise)))};
    return run;
}

side roundsOf(int rounds, double mean, double noise = 0.005)
{
    return [=](simulatedRounds &simulation, double slower) {
        return oneRun(simulation, rounds, mean * slower, noise);
    };
}

/// Rounds that are like the ones before them: each has nine tenths of what the last one was off.
side driftingRounds(int rounds)
{
    return [=](simulatedRounds &simulation, double slower) {
        std::vector<double> spans;
        double off = 0;
        for (int i = 0; i < rounds; ++i) {
            off = 0.9 * off + 0.002 * simulation.normal();
            spans.push_back(0.0203 * slower * (1 + off));
        }
        runRecord run;
        run.tests = {testOf(QStringLiteral("lines"), simulation.measured(spans))};
        return run;
    };
}

/// Repetitions differ by half a percent, and the rounds of one by nearly nothing.
side repeatsOf(int repetitions)
{
    return [=](simulatedRounds &simulation, double slower) {
        runRecord run;
        for (int i = 0; i < repetitions; ++i) {
            const double mean = 0.1003 * slower * (1 + 0.005 * simulation.normal());
            run.tests.push_back(oneRun(simulation, 40, mean, 0.0005).tests[0]);
            run.tests.back().repetition = i;
        }
        return run;
    };
}

/// How many of 1000 comparisons find a difference.
int differencesFound(const side &first, const side &second, double slower)
{
    simulatedRounds simulation(4711);
    int found = 0;
    for (int i = 0; i < 1000; ++i) {
        const runComparison result = compared(comparedTestsOf(first(simulation, 1)),
                                              comparedTestsOf(second(simulation, slower)));
        found += result.tests[0].isNoClearDifference() ? 0 : 1;
    }
    return found;
}

benchResults machineOf(const QMap<QString, float> &values)
{
    benchResults machine;
    for (auto value = values.cbegin(); value != values.cend(); ++value)
        machine.setTest(value.key(), benchResults::test(*value));
    return machine;
}

const QString mandel = QStringLiteral("mandel");
const QString lines = QStringLiteral("lines");

} // namespace

Q_DECLARE_METATYPE(side)

class tst_runComparison : public QObject
{
    Q_OBJECT

private slots:
    void ratios();
    void whatIsMissing();
    void plainValues();
    void otherResolution();
    void whichInterval_data();
    void whichInterval();
    void intervalByHand();
    void officialRatioIsInside();
    void repeatsHaveTheirMedian();
    void equalRepeats();
    void equalSides_data();
    void equalSides();
    void differentSides_data();
    void differentSides();
    void nothing();
};

void tst_runComparison::ratios()
{
    runRecord first = repeatedRun(1);
    runRecord second = repeatedRun(1);
    first.tests[0].average = 0.2F;
    second.tests[0].average = 0.1F;
    first.tests[1].average = 0.1F;
    second.tests[1].average = 0.8F;
    const runComparison result = compared(comparedTestsOf(first), comparedTestsOf(second));
    QCOMPARE(result.tests.size(), std::size_t(2));
    QCOMPARE(result.tests[0].name, mandel);
    QCOMPARE(result.tests[0].unit, QStringLiteral("MPixel"));
    QCOMPARE(result.tests[0].first, 8 / double(0.2F));
    QCOMPARE(result.tests[0].second, 8 / double(0.1F));
    QCOMPARE(result.tests[0].ratio, 2.0);
    QCOMPARE(result.tests[1].ratio, 0.125);
    QVERIFY(result.geometricMean);
    QCOMPARE(*result.geometricMean, 0.5);
}

void tst_runComparison::whatIsMissing()
{
    runRecord first = repeatedRun(1);
    runRecord second = repeatedRun(1);
    second.tests[0].name = QStringLiteral("crc32");
    runComparison result = compared(comparedTestsOf(first), comparedTestsOf(second));
    QCOMPARE(result.tests.size(), std::size_t(1));
    QCOMPARE(result.onlyFirst, QStringList(mandel));
    QCOMPARE(result.onlySecond, QStringList(QStringLiteral("crc32")));
    first.tests[1].end = testEnd::failed;
    result = compared(comparedTestsOf(first), comparedTestsOf(second));
    QVERIFY(result.tests.empty());
    QVERIFY(!result.geometricMean);
    QCOMPARE(result.onlySecond, QStringList({QStringLiteral("crc32"), lines}));
}

void tst_runComparison::plainValues()
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const benchResults machine = machineOf({{mandel, 40},
                                            {lines, 0},
                                            {QStringLiteral("vertex"), infinity},
                                            {QStringLiteral("rle"), -3}});
    runRecord run = repeatedRun(1);
    run.tests[0].average = 0.1F;
    const runComparison result = compared(comparedTestsOf(machine), comparedTestsOf(run));
    QCOMPARE(result.tests.size(), std::size_t(1));
    QCOMPARE(result.tests[0].name, mandel);
    QCOMPARE(result.tests[0].unit, QStringLiteral("MPixel"));
    QVERIFY(std::abs(result.tests[0].ratio - 2) < 1e-6);
    QVERIFY(result.tests[0].source == intervalSource::none);
    QVERIFY(!result.tests[0].ratioInterval && !result.tests[0].isNoClearDifference());
    QCOMPARE(result.onlyFirst, QStringList());
    QCOMPARE(result.onlySecond, QStringList(lines));
}

void tst_runComparison::otherResolution()
{
    runRecord first = repeatedRun(1);
    runRecord second = repeatedRun(1);
    first.tests[0].resolution = QSize(3820, 2160);
    second.tests[0].resolution = QSize(320, 200);
    first.tests[1].resolution = QSize(3820, 2160); // unknown on the other side
    const runComparison result = compared(comparedTestsOf(first), comparedTestsOf(second));
    QCOMPARE(result.otherResolution, QStringList(mandel));
    QCOMPARE(result.tests.size(), std::size_t(1));
    QCOMPARE(result.onlyFirst + result.onlySecond, QStringList());
}

void tst_runComparison::whichInterval_data()
{
    QTest::addColumn<int>("repetitions");
    QTest::addColumn<int>("rounds");
    QTest::addColumn<int>("source");
    const auto row = [](const char *name, int repetitions, int rounds, intervalSource source) {
        QTest::newRow(name) << repetitions << rounds << static_cast<int>(source);
    };
    row("seven rounds", 1, 7, intervalSource::none);
    row("eight rounds", 1, 8, intervalSource::rounds);
    row("two repetitions of three rounds", 2, 3, intervalSource::none);
    row("two repetitions of four rounds", 2, 4, intervalSource::rounds);
    row("three repetitions", 3, 50, intervalSource::repeats);
    row("three repetitions of one round", 3, 1, intervalSource::repeats);
}

void tst_runComparison::whichInterval()
{
    QFETCH(int, repetitions);
    QFETCH(int, rounds);
    QFETCH(int, source);
    const auto run = [&](quint32 seed) {
        runRecord made = repeatedRun(repetitions, seed);
        for (testRun &test : made.tests)
            test.rounds.resize(std::size_t(rounds));
        return comparedTestsOf(made);
    };
    const testRatio found = compared(run(1), run(2)).tests[0];
    QCOMPARE(static_cast<int>(found.source), source);
    QCOMPARE(found.ratioInterval.has_value(), found.source != intervalSource::none);
    if (found.ratioInterval)
        QVERIFY(found.ratioInterval->covers(found.ratio));
    const testRatio half = compared(run(1), comparedTestsOf(machineOf({{mandel, 1}}))).tests[0];
    QVERIFY(half.source == intervalSource::none && !half.ratioInterval);
}

// Logarithms of 0, 1 and 2 thousandths on one side, 9, 10 and 11 on the other: both deviations are
// a thousandth, four degrees of freedom, whose quantile is 2.7764 in printed tables.
void tst_runComparison::intervalByHand()
{
    const auto side = [](double shift) {
        runRecord run;
        for (int i = 0; i < 3; ++i) {
            run.tests.push_back(testOf(lines, simulatedRounds(1).measured({1.0})));
            run.tests.back().average = 1;
            run.tests.back().work = std::exp(0.001 * (shift + i));
        }
        return comparedTestsOf(run);
    };
    const testRatio found = compared(side(0), side(9)).tests[0];
    const double width = 2.7764 * 1.25331 * 0.001 * std::sqrt(2.0 / 3);
    QVERIFY(std::abs(std::log(found.ratio) - 0.009) < 1e-9);
    QVERIFY(std::abs(std::log(found.ratioInterval->lower) - (0.009 - width)) < 1e-7);
    QVERIFY(std::abs(std::log(found.ratioInterval->upper) - (0.009 + width)) < 1e-7);
    QVERIFY(!found.isNoClearDifference());
}

void tst_runComparison::officialRatioIsInside()
{
    simulatedRounds simulation(3);
    const runRecord first = oneRun(simulation, 50, 0.1003, 0.001);
    runRecord second = oneRun(simulation, 50, 0.1003, 0.001);
    second.tests[0].average *= 1.25F; // as where the clock was set forward
    const testRatio found = compared(comparedTestsOf(first), comparedTestsOf(second)).tests[0];
    QVERIFY(std::abs(found.ratio - 0.8) < 0.01);
    QCOMPARE(found.ratioInterval->lower, found.ratio);
    QVERIFY(std::abs(found.ratioInterval->upper - 1) < 0.01);
}

void tst_runComparison::repeatsHaveTheirMedian()
{
    runRecord run = repeatedRun(3);
    const float averages[] = {0.1F, 0.4F, 0.2F};
    for (std::size_t i = 0; i < 3; ++i)
        run.tests[2 * i].average = averages[i];
    QCOMPARE(comparedTestsOf(run)[0].value, 8 / double(0.2F));
    run.tests[2].end = testEnd::failed;
    const comparedTest two = comparedTestsOf(run)[0];
    QCOMPARE(two.value, (8 / double(0.2F) + 8 / double(0.1F)) / 2);
    QVERIFY(!two.fromRepeats && two.fromRounds);
    const testRatio mixed =
        compared(comparedTestsOf(repeatedRun(1)), comparedTestsOf(repeatedRun(5, 2))).tests[0];
    QVERIFY(mixed.source == intervalSource::rounds && mixed.isNoClearDifference());
}

void tst_runComparison::equalRepeats()
{
    // All repetitions equal: the interval is the ratio.
    runRecord run = repeatedRun(3);
    for (testRun &test : run.tests)
        test.average = 0.5F;
    const testRatio found = compared(comparedTestsOf(run), comparedTestsOf(run)).tests[0];
    QCOMPARE(found.ratioInterval->lower, 1.0);
    QCOMPARE(found.ratioInterval->upper, 1.0);
    QVERIFY(found.isNoClearDifference());
}

void tst_runComparison::equalSides_data()
{
    QTest::addColumn<side>("first");
    QTest::addColumn<side>("second");
    QTest::addColumn<int>("mostFound"); // 50 are what 95 % promise
    QTest::newRow("8 rounds") << roundsOf(8, 1.0003) << roundsOf(8, 1.0003) << 70;
    QTest::newRow("50 rounds") << roundsOf(50, 0.1603) << roundsOf(50, 0.1603) << 70;
    QTest::newRow("1000 rounds") << roundsOf(1000, 0.00807) << roundsOf(1000, 0.00807) << 70;
    QTest::newRow("8 and 200 rounds") << roundsOf(8, 0.0803) << roundsOf(200, 0.0803) << 70;
    QTest::newRow("of unequal noise")
        << roundsOf(30, 0.1003, 0.02) << roundsOf(12, 0.1003, 0.002) << 70;
    QTest::newRow("400 drifting rounds") << driftingRounds(400) << driftingRounds(400) << 100;
    QTest::newRow("3 repetitions") << repeatsOf(3) << repeatsOf(3) << 70;
    QTest::newRow("5 repetitions") << repeatsOf(5) << repeatsOf(5) << 70;
    QTest::newRow("3 and 10 repetitions") << repeatsOf(3) << repeatsOf(10) << 70;
}

void tst_runComparison::equalSides()
{
    QFETCH(side, first);
    QFETCH(side, second);
    QFETCH(int, mostFound);
    const int found = differencesFound(first, second, 1);
    qInfo("differences found in 1000 comparisons of equals: %d", found);
    QVERIFY2(found <= mostFound, qPrintable(QString::number(found)));
}

void tst_runComparison::differentSides_data()
{
    QTest::addColumn<side>("kind");
    QTest::addColumn<double>("slower");
    QTest::newRow("8 rounds, 5 %") << roundsOf(8, 1.0003) << 1.05;
    QTest::newRow("50 rounds, 5 %") << roundsOf(50, 0.1603) << 1.05;
    QTest::newRow("1000 rounds, 0.5 %") << roundsOf(1000, 0.00807) << 1.005;
    QTest::newRow("3 repetitions, 5 %") << repeatsOf(3) << 1.05;
    QTest::newRow("10 repetitions, 2 %") << repeatsOf(10) << 1.02;
}

void tst_runComparison::differentSides()
{
    QFETCH(side, kind);
    QFETCH(double, slower);
    const int found = differencesFound(kind, kind, slower);
    qInfo("found in 1000 comparisons: %d", found);
    QVERIFY2(found >= 980, qPrintable(QString::number(found)));
}

void tst_runComparison::nothing()
{
    const runComparison result = compared({}, {});
    QVERIFY(result.tests.empty() && !result.geometricMean);
}

QTEST_APPLESS_MAIN(tst_runComparison)
#include "tst_runComparison.moc"
