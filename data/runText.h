// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"

/// When @p run was made and on what, in one line: for headings.
QString runTitle(const runRecord &run);

/// @p run for people: what it was made on, and each test's throughput with its spread and what is
/// to be thought of it.
QString runText(const runRecord &run);

/// What is to be thought of @p run in one line, without an end: how many of its tests are good, and
/// which are not, the worst first.
QString verdictLine(const runRecord &run);

/// What came of repetitions: the median of each test's results and their spread. Empty for a run
/// without any.
QString repetitionsText(const runRecord &run);

/// Runs in the order in which they were made, as a table: each with the geometric mean of its
/// results in relation to those of the first run and of the one before, over the tests that both
/// have.
QString historyText(const std::vector<runRecord> &runs);
