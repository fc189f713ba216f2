// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/statistics.h"

#include <QtTest>

#include <limits>
#include <numeric>
#include <vector>

using values = std::vector<double>;
Q_DECLARE_METATYPE(values)
Q_DECLARE_METATYPE(statistics)

namespace
{

constexpr double none = std::numeric_limits<double>::quiet_NaN();

/// Whether two figures are the same but for the order in which sums were formed.
bool isSame(double left, double right)
{
    return std::abs(left - right) <= 1e-12 * std::max({1.0, std::abs(left), std::abs(right)});
}

/// The same values as the other program's: a linear congruence, from its own length.
values congruence(int count)
{
    values result;
    quint64 state = static_cast<quint64>(count);
    for (int i = 0; i < count; ++i) {
        state = (1103515245 * state + 12345) % 2147483648;
        result.push_back(static_cast<double>(state >> 8U) / 1000.0);
    }
    return result;
}

} // namespace

class tst_statistics : public QObject
{
    Q_OBJECT

private slots:
    void figures_data();
    void figures();
    void medianIntervals_data();
    void medianIntervals();
    void orderDoesNotMatter();
    void geometricMean_data();
    void geometricMean();
};

void tst_statistics::figures_data()
{
    QTest::addColumn<values>("series");
    QTest::addColumn<statistics>("expected");
    const auto row = [](const char *name, const values &series, statistics expected, double lower,
                        double upper) {
        if (!std::isnan(lower))
            expected.medianInterval = interval{lower, upper};
        QTest::newRow(name) << series << expected;
    };
    // By hand: count, mean, median, minimum, maximum, deviation, median absolute deviation.
    row("none", {}, {}, none, none);
    row("one", {7.5}, {1, 7.5, 7.5, 7.5, 7.5, 0, 0, {}}, none, none);
    row("two", {1, 4}, {2, 2.5, 2.5, 1, 4, 1.5 * std::sqrt(2.0), 1.5, {}}, none, none);
    row("equal", {3, 3, 3, 3, 3, 3}, {6, 3, 3, 3, 3, 0, 0, {}}, 3, 3);
    row("odd", {9, 1, 2}, {3, 4, 2, 1, 9, std::sqrt(19.0), 1, {}}, none, none);
    row("even", {4, 1, 2, 9}, {4, 4, 3, 1, 9, std::sqrt(38.0 / 3), 1.5, {}}, none, none);
    row("negative", {-1, -2, -3}, {3, -2, -2, -3, -1, 1, 1, {}}, none, none);

    // By Python 3.11: mean, median, stdev of its module statistics; the interval from sums of
    // math.comb(n, i) in whole numbers, while 40 times the sum is not above 2 ** n.
    row("python, a wild value", {1, 1, 2, 2, 4, 6, 900},
        {7, 916 / 7.0, 2, 1, 900, 339.16487071011574, 1, {}}, 1, 900);
    row("python, 5 values", congruence(5),
        {5, 4085.7727999999997, 2717.911, 2165.018, 8160.663, 2491.0316103310893, 552.893, {}},
        none, none);
    row("python, 6 values", congruence(6),
        {6, 3665.230666666667, 3252.192, 697.862, 6982.678, 2630.2277217055307, 2266.041, {}},
        697.862, 6982.678);
    row("python, 7 values", congruence(7),
        {7, 4785.198428571429, 5008.469, 861.572, 8328.08, 2883.550730370738, 2498.054, {}},
        861.572, 8328.08);
    row("python, 50 values", congruence(50),
        {50, 4075.6985, 4260.3385, 240.686, 7393.233, 2201.6729934005543, 1685.9005, {}}, 2925.051,
        5482.989);
    row("python, 999 values", congruence(999),
        {999, 4070.9433113113114, 3998.652, 12.794, 8385.505, 2432.6340118318026, 2176.001, {}},
        3747.051, 4360.584);
    row("python, 1000 values", congruence(1000),
        {1000, 4243.102987, 4243.966, 51.234, 8388.207, 2356.425148601226, 2004.0955, {}}, 3907.259,
        4479.824);
    row("python, 20000 values", congruence(20000),
        {20000, 4191.8902967, 4201.7475, 0.091, 8388.121, 2424.745383133931, 2082.161, {}},
        4142.856, 4260.65);
}

void tst_statistics::figures()
{
    QFETCH(values, series);
    QFETCH(statistics, expected);
    const statistics found = statisticsOf(series);
    QCOMPARE(found.count, expected.count);
    const auto compare = [](double left, double right) {
        QVERIFY2(
            isSame(left, right),
            qPrintable(QStringLiteral("%1, not %2").arg(left, 0, 'g', 17).arg(right, 0, 'g', 17)));
    };
    compare(found.mean, expected.mean);
    compare(found.median, expected.median);
    compare(found.minimum, expected.minimum);
    compare(found.maximum, expected.maximum);
    compare(found.standardDeviation, expected.standardDeviation);
    compare(found.medianAbsoluteDeviation, expected.medianAbsoluteDeviation);
    QCOMPARE(found.medianInterval.has_value(), expected.medianInterval.has_value());
    if (expected.medianInterval) {
        compare(found.medianInterval->lower, expected.medianInterval->lower);
        compare(found.medianInterval->upper, expected.medianInterval->upper);
    }
}

// Which of the sorted values bound the interval, counted from 1, as in printed tables of it.
void tst_statistics::medianIntervals_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("lower");
    QTest::addColumn<int>("upper");
    QTest::newRow("6") << 6 << 1 << 6;
    QTest::newRow("8") << 8 << 1 << 8;
    QTest::newRow("9") << 9 << 2 << 8;
    QTest::newRow("50") << 50 << 18 << 33;
    QTest::newRow("100") << 100 << 40 << 61;
    QTest::newRow("1000") << 1000 << 469 << 532;
}

void tst_statistics::medianIntervals()
{
    QFETCH(int, count);
    QFETCH(int, lower);
    QFETCH(int, upper);
    values series(static_cast<std::size_t>(count));
    std::iota(series.begin(), series.end(), 1.0);
    const statistics found = statisticsOf(series);
    QVERIFY(found.medianInterval);
    QCOMPARE(found.medianInterval->lower, double(lower));
    QCOMPARE(found.medianInterval->upper, double(upper));
    QVERIFY(found.medianInterval->covers(lower) && found.medianInterval->covers(upper));
    QVERIFY(!found.medianInterval->covers(lower - 0.1));
    QVERIFY(!found.medianInterval->covers(upper + 0.1));
}

void tst_statistics::orderDoesNotMatter()
{
    values series = congruence(51);
    const statistics before = statisticsOf(series);
    std::reverse(series.begin(), series.end());
    const statistics after = statisticsOf(series);
    QCOMPARE(after.median, before.median);
    QCOMPARE(after.medianAbsoluteDeviation, before.medianAbsoluteDeviation);
    QCOMPARE(after.medianInterval->lower, before.medianInterval->lower);
    QCOMPARE(before.spread(), before.standardDeviation / before.mean);
    QCOMPARE(before.robustDeviation(), 1.4826 * before.medianAbsoluteDeviation);
    QCOMPARE(statistics{}.spread(), 0.0);
}

void tst_statistics::geometricMean_data()
{
    QTest::addColumn<values>("series");
    QTest::addColumn<double>("expected");
    QTest::newRow("none") << values{} << none;
    QTest::newRow("one") << values{4} << 4.0;
    QTest::newRow("two") << values{0.5, 8} << 2.0;
    QTest::newRow("beyond the largest product") << values{1e300, 1e300, 1e300} << 1e300;
    QTest::newRow("a zero") << values{0, 8} << none;
    QTest::newRow("a negative one") << values{-2, -2} << none;
    QTest::newRow("an infinite one") << values{1, std::numeric_limits<double>::infinity()} << none;
    QTest::newRow("no number") << values{1, none} << none;
}

void tst_statistics::geometricMean()
{
    QFETCH(values, series);
    QFETCH(double, expected);
    const std::optional<double> found = geometricMeanOf(series);
    QCOMPARE(found.has_value(), !std::isnan(expected));
    if (found)
        QVERIFY(std::abs(*found / expected - 1) < 1e-12);
}

QTEST_APPLESS_MAIN(tst_statistics)
#include "tst_statistics.moc"
