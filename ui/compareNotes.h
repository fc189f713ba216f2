// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/placing.h"

/// What the compare window says below its chart, without a window.
namespace compareNotes
{

/// How many of the bars of @p machines are modelled. Empty if none is.
QString onEstimates(const QVector<benchResults> &machines);

/// Why bars cannot be compared, and what to do. Empty if all can. @p isOwnMeasure: scores are
/// ratios to this machine.
QString onGaps(const ranking::gaps &found, bool isOwnMeasure, bool isPerClock);

/// Where this machine stands.
QString onPlace(const placing &found);

/// Why it has no place: it has no result of the tests @p missing, or of the one that is shown
/// (@p isOneTest). And what to do.
QString onMissing(const QStringList &missing, bool isOneTest);

/// Whose score is 100 in @p ranked.
QString onMeasure(const ranking::rankedList &ranked);

/// What its scores are shares of: a title of an axis.
QString ofMeasure(const ranking::rankedList &ranked);

/// Which machines, by their names, have no bar. Empty if all have one.
QString onBarless(const QStringList &names);

} // namespace compareNotes
