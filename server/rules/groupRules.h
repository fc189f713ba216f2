// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/rules/countedRun.h"

/// An upload that has a say in what is published.
struct countedUpload {
    qint64 received = 0; ///< milliseconds since 1970
    QByteArray source;   ///< a token of where it came from; empty if that is not known
    benchResults machine;
};

/// Whom the lists are for.
enum class ruleSet {
    open,  ///< anybody may upload
    circle ///< a small group that trusts itself: one upload makes a machine
};

/// Under the open rules a machine of the normal list needs so many sources, ...
constexpr int sourcesForTheNormalList = 3;
/// ... on so many days, so that nobody makes one in an afternoon.
constexpr int daysForTheNormalList = 2;

/// In a test, a result further than so many robust deviations from the median takes its upload out.
constexpr float mostDeviations = 10;
/// The robust deviation is at least this share of the median. Full runs of one machine were seen to
/// differ by up to 37 %, so that half of the median more or less is no reason to leave one out.
constexpr float leastDeviation = 0.05F;

/// What the uploads of one group make.
struct groupVerdict {
    std::optional<benchResults> normal; ///< the machine of the normal list
    std::optional<benchResults> beta;
    int sources = 0;  ///< how many tokens have a say in it
    qint64 first = 0; ///< when the oldest upload that counts was received
};

/// What the uploads of one machine have in common: the key of the processor's name, the operating
/// system and the thread count. Empty if the name is none that is published.
QString groupKey(const benchResults &machine);

/// Judges the uploads of one group, in whatever order they are.
///
/// Only whole runs count. The uploads of one source on one day are one, the median of them in each
/// test: else who uploads most would decide. Of these, those with an outlying result in any test
/// are left out. What remains makes a machine, the median in each test, under the spelling of the
/// processor's name that most of them have.
groupVerdict judge(const QVector<countedUpload> &uploads, ruleSet rules);
/// The same for uploads that are known to be whole runs.
groupVerdict judge(const QVector<countedRun> &runs, ruleSet rules);

/// The indexes of those of @p uploads, all of one group, that are whole runs with an outlying
/// result.
QVector<int> outliersAmong(const QVector<countedUpload> &uploads);
