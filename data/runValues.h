// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "engine/benchResults.h"

#include <QStringList>

#include <optional>
#include <vector>

/// The names of the tests of @p run, each once, in the order in which they were first measured.
QStringList testNamesOf(const runRecord &run);

/// The official throughputs of test @p name in @p run, one for each repetition that has a result.
std::vector<double> valuesOf(const runRecord &run, const QString &name);

/// Their median, which is the value of a test that was repeated.
std::optional<double> valueOf(const runRecord &run, const QString &name);

/// The machine of @p run with the values of its tests, as a record of the list of machines.
benchResults resultsOf(const runRecord &run);
