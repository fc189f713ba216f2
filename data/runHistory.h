// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "data/verdict.h"

#include <vector>

/// One run in the history of a test, or of all.
struct historyPoint {
    int run = 0; ///< its index among the runs
    QDateTime when;
    double value =
        0; ///< in millions of the unit per second; of the mean in percent of the first run
    QString version;   ///< of Fennick
    QString judgement; ///< what is to be thought of it, in words
};

/// The names of all tests of @p runs, each once, in the order in which they first came.
QStringList testNamesOf(const std::vector<runRecord> &runs);

/// How test @p name went in those of @p runs that have a result of it, in their order. Without a
/// name the geometric mean of each run's results in relation to the first one's, over the tests
/// that both have.
std::vector<historyPoint> historyOf(const std::vector<runRecord> &runs, const QString &name = {});

/// The unit of test @p name in @p runs, such as "MPixel/s".
QString unitOf(const std::vector<runRecord> &runs, const QString &name);
