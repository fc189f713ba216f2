// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runComparison.h"
#include "data/standing.h"

#include <optional>

/// What both sides of a comparison are called.
struct comparedTitles {
    QString first;
    QString second;
};

/// @p comparison as a table for a terminal of @p columns: each test's ratio with its interval, or
/// "no clear difference", and a bar as long as there is room for; the values too where it is wide.
QString comparisonText(const runComparison &comparison, const comparedTitles &titles, int columns);

/// Where the two sides stand in the list of machines, @p second being the 100 of all scores: one
/// line, or nothing without @p second.
QString standingsText(const std::optional<standing> &first, const std::optional<standing> &second);
