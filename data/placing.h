// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

#include <optional>

/// Where this machine stands among the others.
struct placing {
    int place = 1;    ///< counted from 1 for the best; equals share the better place
    int machines = 1; ///< all that have something to compare, this one included
    int slower = 0;   ///< of the others

    /// The others that are slower, in whole percent, rounded down. None in a list of one.
    std::optional<int> percentSlower() const;
};

/// The place of the last of @p ranked, by its bar of @p kind, or of @p testName for oneTest.
/// Nothing for a machine whose bar is none.
std::optional<placing> placingOf(const QVector<benchResults> &ranked, ranking::testKind kind,
                                 const QString &testName = {});
