// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "data/statistics.h"

#include <QString>

#include <vector>

/// How much the rounds of a test differ: their standard deviation as a share of their mean.
enum class steadiness {
    good,        ///< at most 1 %
    noisy,       ///< at most 2.5 %
    unsteady,    ///< more
    tooFewRounds ///< to tell
};

/// Why a number may not be what it seems.
enum class remarkKind {
    slowFirstRounds,
    outliers,
    trend, ///< the second half slower than the first
    clocksDisagree,
    suspended, ///< a round of minutes, which is left out of the statistics
    slowerThanOneCore,
    otherProcesses,
    busyAtStart
};

struct remark {
    remarkKind kind = remarkKind::outliers;
    QString sentence; ///< for people; lower case, without a full stop
};

/// What one test of a run is to be thought of.
struct verdict {
    steadiness level = steadiness::tooFewRounds;
    std::vector<remark> remarks;
    statistics rounds; ///< in seconds on the fine clock, without suspended rounds
};

/// The machine-readable words, such as "too-few-rounds" and "slow-first-rounds".
QString wordOf(steadiness level);
QString wordOf(remarkKind kind);

/// The same for people, such as "too few rounds to tell".
QString textOf(steadiness level);

/// The verdict on @p test, which is one of @p run's: its multi-core results are compared with the
/// single-core ones of the run.
verdict verdictOf(const testRun &test, const runRecord &run);

/// What is to be said about all of @p run rather than about one of its tests.
std::vector<remark> remarksOf(const runRecord &run);
