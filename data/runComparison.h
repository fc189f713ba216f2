// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "data/statistics.h"
#include "engine/benchResults.h"

#include <QStringList>

#include <optional>
#include <vector>

/// A value and how well it is known.
struct measuredValue {
    double value = 0;
    /// The standard deviation of the value's logarithm, so about its relative standard error, and
    /// the degrees of freedom behind it.
    double error = 0;
    double freedom = 0;
};

/// The result of one test on one side of a comparison. A side may be a run, or stored values of
/// which nothing else is known.
struct comparedTest {
    QString name;
    QString unit;                             ///< empty where unknown
    QSize resolution;                         ///< empty where unknown
    double value = 0;                         ///< throughput; of a repeated test the median
    std::optional<measuredValue> fromRepeats; ///< from three repetitions on
    std::optional<measuredValue> fromRounds;  ///< from eight rounds on
};

/// The tests of @p run that have results, in its order.
std::vector<comparedTest> comparedTestsOf(const runRecord &run);
/// The results of @p machine that are more than 0, in the order of their names.
std::vector<comparedTest> comparedTestsOf(const benchResults &machine);

/// What a ratio's interval knows of.
enum class intervalSource {
    none,
    rounds, ///< says little of what differs from run to run
    repeats
};

/// One test on both sides.
struct testRatio {
    QString name;
    QString unit;
    double first = 0;
    double second = 0;
    double ratio = 1; ///< second / first
    intervalSource source = intervalSource::none;
    std::optional<interval> ratioInterval; ///< of 95 %; holds the ratio

    /// Whether the two may well be the same. False where nothing is known.
    bool isNoClearDifference() const { return ratioInterval && ratioInterval->covers(1); }
};

struct runComparison {
    std::vector<testRatio> tests; ///< in the order of the first side
    QStringList onlyFirst;        ///< tests that the second side lacks
    QStringList onlySecond;
    QStringList otherResolution;         ///< tests of both sides that did not do the same work
    std::optional<double> geometricMean; ///< of the ratios, where there are any
};

/// The second side in terms of the first.
runComparison compared(const std::vector<comparedTest> &first,
                       const std::vector<comparedTest> &second);
