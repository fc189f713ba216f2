// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// Puts machines into the order of their results.
namespace ranking
{

/// Which results a score counts.
enum testKind {
    singleCoreTests = 0,
    multiCoreTests = 1,
    allTests = 2,
    oneTest = 3 ///< scored like allTests, for the order; the bars show one test's results
};

/// Which of the ranked machines are shown, besides this machine.
enum selectionMode {
    mixedDevices = 0,  ///< evenly spread over all
    topDevices = 1,    ///< the first ones
    mediumDevices = 2, ///< those around the middle
    lastDevices = 3,   ///< the last ones
    allDevices = 4
};

/// Bits of the operating systems that are let through.
enum osFlag { androidFlag = 1, linuxFlag = 2, windowsFlag = 4 };

/// What the ranking knows of a test.
struct rankedTest {
    QString name; ///< the key of its results
    bool isMulticore = false;
    bool isSingleOnly = false; ///< left out of all scores
};

struct choices {
    testKind kind = singleCoreTests;
    selectionMode mode = mixedDevices;
    int count = 20; ///< of machines, where the mode has a number
    int osMask = androidFlag | linuxFlag | windowsFlag;
    bool isMerged = false;   ///< machines of one name, in any case, are one
    bool isPerClock = false; ///< scores by clock, and by thread where a test uses all
};

/// What is drawn instead of a value that is missing, not positive or not a number, so that every
/// machine keeps a visible bar.
constexpr float smallestBar = 0.0001F;

/// Whether @p os is one of the words "android", "linux" and "windows" and its bit is set.
bool osMatches(const QString &os, int osMask);

/// Joins machines whose names differ in case only, in the order of the lower-case names. A joined
/// machine is the first of its group with the group's mean results; a result that a member lacks
/// counts as 0.
QVector<benchResults> mergedByName(const QVector<benchResults> &machines);

/// All machines that @p wanted lets through, whatever its mode and count: best score first, then
/// this machine. Nothing is selected.
struct rankedList {
    QVector<benchResults> machines;
    benchResults measure;      ///< the machine whose score is 100
    bool isOwnMeasure = false; ///< whether that is this machine
};

/// Ranks @p machines, of which the last is this one. Scores are the mean ratio to this machine if
/// it is measured, else to the first one left, in percent, over the tests of @p tests that both
/// have; they may be infinite or not a number, which ranks last. Empty for fewer than two machines.
rankedList rankedAll(const QVector<benchResults> &machines, const QVector<rankedTest> &tests,
                     const choices &wanted);

/// The machines to be shown, in the order of their bars: those that @p wanted picks from @p ranked,
/// then this machine, whatever was picked.
QVector<benchResults> shownOf(QVector<benchResults> ranked, const choices &wanted);

/// Those that are shown of @p machines once they are ranked.
QVector<benchResults> rankedMachines(const QVector<benchResults> &machines,
                                     const QVector<rankedTest> &tests, const choices &wanted);

/// The tests that @p kind counts and @p machine has no result of, by name, in the order of @p
/// tests.
QStringList missingResults(const benchResults &machine, const QVector<rankedTest> &tests,
                           testKind kind);

/// Scores that are no finite number, which makes bars disappear, and what is there to compare.
struct gaps {
    int bars = 0;     ///< of the shown machines, those with such a score
    int machines = 0; ///< all that are shown
    int results = 0;  ///< of the tests that count, those with a result on this machine
    int tests = 0;    ///< all that count
};

/// The gaps of @p shown, which is what rankedMachines gave for @p tests and @p wanted. None for
/// oneTest, whose bars are no scores.
gaps gapsOf(const QVector<benchResults> &shown, const QVector<rankedTest> &tests,
            const choices &wanted);

/// The height of @p machine's bar: its result of @p testName for oneTest, else its score.
float barValue(const benchResults &machine, testKind kind, const QString &testName);

} // namespace ranking
