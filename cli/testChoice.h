// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QString>
#include <QStringList>

#include <vector>

/// A test that can be asked for.
struct listedTest {
    QString name; ///< exact
    bool isMulticore = false;
    bool isInFullRuns = true;
};

/// The tests of the suite.
std::vector<listedTest> listedTests();

/// The exact names of the tests that @p wanted means: one whose name it is, but for the blanks; all
/// of full runs with "single" or "multi"; all that fit a pattern with *, ? or [; else the one whose
/// name it begins, or, if it begins none, whose name holds it. An error lists what there is to
/// choose from.
outcome<QStringList> chosenTests(const QString &wanted, const std::vector<listedTest> &tests);
