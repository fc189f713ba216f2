// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

#include <optional>

/// Where a machine stands in a list.
struct standing {
    double score = 0; ///< combined, percent of the machine that is 100
    int place = 0;    ///< 1 is the best
    int machines = 0; ///< in the list
};

/// Where @p machine stands, or would stand, in @p list, by the score over all of @p tests that
/// makes @p unit 100. None where a result of a whole run is missing on either: its score would be
/// of other tests than everybody's.
std::optional<standing> standingOf(const benchResults &machine, const benchResults &unit,
                                   const QVector<benchResults> &list,
                                   const QVector<ranking::rankedTest> &tests);
