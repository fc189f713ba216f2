// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "engine/outcome.h"

#include <QString>
#include <QVector>

#include <limits>

/// Whether @p machine has all results of a full run, each greater than zero.
bool isWholeRun(const benchResults &machine);

/// What the results of a machine can be, as far as a list of known machines tells.
///
/// All bounds come from that list, and are wide: they tell apart what no processor does, not what
/// is unusual. The clocks are nominal, and a core may run at several times its own.
class plausibility
{
public:
    /// A result may be so many times the best of the list, by clock and, where all cores work, by
    /// thread.
    static constexpr float perClockFactor = 4;
    /// All cores together may be so many times as fast as one core times the threads, ...
    static constexpr float scalingFactor = 1.5F;
    /// ... and must reach so much of one core.
    static constexpr float leastScaling = 0.5F;
    /// The ratio of two tests may lie by this factor outside of what the list has. The modelled
    /// machines of the built-in list are right within 1.6 either way, two of their results thus
    /// within 2.6; other libraries and systems make up to as much again.
    static constexpr float ratioFactor = 6;

    explicit plausibility(const QVector<benchResults> &knownMachines);

    /// The bounds by the built-in list.
    static const plausibility &ofBuiltInList();

    /// Why @p machine's results cannot be right. Results of zero, which mean "not run", are passed
    /// over.
    outcome<void> check(const benchResults &machine) const;

private:
    struct knownTest {
        QString name;
        bool isMulticore = false;
        int singleCore = -1; ///< the same work on one core; -1 for a single-core test
        double bestPerClock = 0;
    };
    /// Two tests that use as many cores, and the bounds of the first one's share of the other.
    struct knownRatio {
        int first = 0;
        int second = 0;
        double least = std::numeric_limits<double>::infinity();
        double most = 0;
    };
    /// A machine with its results in the order of the tests.
    struct measured {
        double clock = 0; ///< in GHz
        int threads = 1;
        QVector<double> results;

        double perClock(int test, bool isMulticore) const
        {
            return results.at(test) / clock / (isMulticore ? threads : 1);
        }
    };

    void addTests();
    void addRatios();
    void learn(const measured &machine);
    measured resultsOf(const benchResults &machine) const;

    outcome<void> checkPerClock(const measured &machine, int test) const;
    outcome<void> checkScaling(const measured &machine, int test) const;
    outcome<void> checkRatio(const measured &machine, const knownRatio &ratio) const;

    QVector<knownTest> tests;
    QVector<knownRatio> ratios;
    float fastestClock = 1;
};
