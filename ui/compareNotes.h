// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

/// What the compare window says below its chart, without a window.
namespace compareNotes
{

/// How many of the bars of @p machines are modelled. Empty if none is.
QString onEstimates(const QVector<benchResults> &machines);

/// Why bars cannot be compared, and what to do. Empty if all can. @p isOwnMeasure: scores are
/// ratios to this machine.
QString onGaps(const ranking::gaps &found, bool isOwnMeasure, bool isPerClock);

} // namespace compareNotes
