// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runComparison.h"

#include "data/roundRemarks.h"
#include "data/runValues.h"

#include <boost/math/distributions/students_t.hpp>

#include <algorithm>
#include <cmath>

// How sure a ratio is. Relative errors are errors of logarithms, and the logarithm of a ratio is a
// difference; so this is the interval of B. L. Welch (Biometrika 34, 1947) for the difference of
// two means with errors of their own. Three repetitions have no percentiles to bootstrap from, and
// the quantiles of Student's distribution know how little three values tell.

namespace
{

constexpr std::size_t fewestRepeats = 3;
constexpr std::size_t fewestRoundsForAnError = 8;

/// The median of values is less sure than their mean: by a factor of sqrt(pi / 2) for many normal
/// values, and by less for few.
constexpr double medianFactor = 1.2533141373155;

std::optional<measuredValue> repeatsOf(const std::vector<double> &values)
{
    if (values.size() < fewestRepeats)
        return std::nullopt;
    std::vector<double> logarithms;
    for (const double value : values)
        logarithms.push_back(std::log(value));
    const auto n = static_cast<double>(values.size());
    const double deviation = statisticsOf(logarithms).standardDeviation;
    return measuredValue{medianOf(values), medianFactor * deviation / std::sqrt(n), n - 1};
}

/// The means of at most ten blocks of consecutive rounds, as equal as can be. Neighbouring rounds
/// are alike, so their own deviation would promise too much; means of long blocks are nearly
/// independent. The method of batch means: A. M. Law, Simulation Modeling and Analysis, 5th
/// edition, 9.5.3.
std::vector<double> blockMeans(const std::vector<double> &spans)
{
    constexpr std::size_t mostBlocks = 10;
    const std::size_t blocks = std::min(spans.size(), mostBlocks);
    std::vector<double> means;
    for (std::size_t i = 0; i < blocks; ++i) {
        const std::size_t begin = i * spans.size() / blocks;
        const std::size_t end = (i + 1) * spans.size() / blocks;
        means.push_back(statisticsOf(std::span(spans).subspan(begin, end - begin)).mean);
    }
    return means;
}

/// The throughput of the repetitions in @p tests by the fine clock, one after the other: the
/// official clock's milliseconds may be coarser than what rounds differ by.
std::optional<measuredValue> roundsOf(const std::vector<const testRun *> &tests)
{
    std::vector<double> spans;
    for (const testRun *test : tests) {
        const std::vector<double> counted = countedSpans(test->rounds);
        spans.insert(spans.end(), counted.begin(), counted.end());
    }
    if (spans.size() < fewestRoundsForAnError)
        return std::nullopt;
    const statistics blocks = statisticsOf(blockMeans(spans));
    if (!(blocks.mean > 0))
        return std::nullopt;
    return measuredValue{tests.front()->work / statisticsOf(spans).mean,
                         blocks.spread() / std::sqrt(static_cast<double>(blocks.count)),
                         static_cast<double>(blocks.count - 1)};
}

interval intervalOf(const measuredValue &first, const measuredValue &second)
{
    const double ratio = second.value / first.value;
    const double left = first.error * first.error;
    const double right = second.error * second.error;
    const double sum = left + right;
    if (!(sum > 0))
        return {ratio, ratio};
    const double freedom =
        sum * sum / (left * left / first.freedom + right * right / second.freedom);
    constexpr double upperQuantile = 0.975;
    const double width = quantile(boost::math::students_t(freedom), upperQuantile) * std::sqrt(sum);
    return {ratio * std::exp(-width), ratio * std::exp(width)};
}

/// The interval with @p ratio in it: the official ratio may lie outside of what the fine clock
/// says, and is then the less certain for it.
interval reaching(interval bounds, double ratio)
{
    return {std::min(bounds.lower, ratio), std::max(bounds.upper, ratio)};
}

testRatio ratioOf(const comparedTest &first, const comparedTest &second)
{
    testRatio result{first.name,
                     first.unit.isEmpty() ? second.unit : first.unit,
                     first.value,
                     second.value,
                     second.value / first.value,
                     intervalSource::none,
                     std::nullopt};
    if (first.fromRepeats && second.fromRepeats) {
        result.source = intervalSource::repeats;
        result.ratioInterval = intervalOf(*first.fromRepeats, *second.fromRepeats);
    } else if (first.fromRounds && second.fromRounds) {
        result.source = intervalSource::rounds;
        result.ratioInterval =
            reaching(intervalOf(*first.fromRounds, *second.fromRounds), result.ratio);
    }
    return result;
}

const comparedTest *find(const std::vector<comparedTest> &tests, const QString &name)
{
    const auto found = std::find_if(tests.begin(), tests.end(), [&name](const comparedTest &test) {
        return test.name == name;
    });
    return found == tests.end() ? nullptr : &*found;
}

bool isOtherResolution(const comparedTest &first, const comparedTest &second)
{
    return !first.resolution.isEmpty() && !second.resolution.isEmpty()
           && first.resolution != second.resolution;
}

bool isUsable(double value)
{
    return value > 0 && std::isfinite(value);
}

} // namespace

std::vector<comparedTest> comparedTestsOf(const runRecord &run)
{
    std::vector<comparedTest> tests;
    for (const QString &name : testNamesOf(run)) {
        const std::vector<double> values = valuesOf(run, name);
        if (values.empty() || !std::all_of(values.begin(), values.end(), isUsable))
            continue;
        std::vector<const testRun *> repetitions;
        for (const testRun &test : run.tests) {
            if (test.name == name && test.value())
                repetitions.push_back(&test);
        }
        tests.push_back({name, repetitions.front()->unit, repetitions.front()->resolution,
                         medianOf(values), repeatsOf(values), roundsOf(repetitions)});
    }
    return tests;
}

std::vector<comparedTest> comparedTestsOf(const benchResults &machine)
{
    std::vector<comparedTest> tests;
    const auto &results = machine.getTests();
    for (auto result = results.cbegin(); result != results.cend(); ++result) {
        const auto value = static_cast<double>(result->value);
        if (isUsable(value))
            tests.push_back({result.key(), {}, {}, value, std::nullopt, std::nullopt});
    }
    return tests;
}

runComparison compared(const std::vector<comparedTest> &first,
                       const std::vector<comparedTest> &second)
{
    runComparison result;
    std::vector<double> ratios;
    for (const comparedTest &test : first) {
        const comparedTest *other = find(second, test.name);
        if (!other) {
            result.onlyFirst.append(test.name);
        } else if (isOtherResolution(test, *other)) {
            result.otherResolution.append(test.name);
        } else {
            result.tests.push_back(ratioOf(test, *other));
            ratios.push_back(result.tests.back().ratio);
        }
    }
    for (const comparedTest &test : second) {
        if (!find(first, test.name))
            result.onlySecond.append(test.name);
    }
    result.geometricMean = geometricMeanOf(ratios);
    return result;
}
