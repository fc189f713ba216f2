// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/reference/referenceTables.h"

#include <QString>
#include <QVector>

// How fast a machine that nobody has run would be, worked out from what bounds each workload.
// docs/reference-model.md explains the model and its constants.

namespace reference
{

/// What a workload asks of a machine, for one unit of its result: a pixel, a line, a word, a
/// vertex.
struct workload {
    const char *name;
    /// How many units a result of 1 stands for: a million, or a thousand lines.
    double unitsPerResult;
    double instructions;
    double loads;
    /// The longest chain of operations that wait for each other: multiplications, additions, and
    /// cycles of integer operations, which take as long on all cores.
    double chainMultiplications;
    double chainAdditions;
    double chainCycles;
    double divisions;
    double roots;
    double branchMisses;
    /// Pages of memory that are touched for the first time.
    double newPages;
    /// Bytes moved between memory and the caches.
    double bytes;
};

/// A test of a full run.
struct modelledTest {
    QString name;
    const workload *work;
    bool multicore;
};

const QVector<workload> &workloads();
/// The tests of a full run in the order of the suite.
const QVector<modelledTest> &modelledTests();

/// The cycles that one unit keeps a core busy if memory never makes it wait.
double cyclesPerUnit(const workload &work, const core &on);

/// How many of its own big cores, alone and at their boost clock, all cores of @p m are worth.
double coreWorth(const workload &work, const machine &m, const tables &facts);

/// The result that @p m could not exceed if memory alone were the limit.
double memoryBound(const modelledTest &test, const machine &m, const tables &facts);

/// The result before calibration: what the cores could do, or what the memory allows.
double modelled(const modelledTest &test, const machine &m, const tables &facts);

/// Measured divided by modelled result on the calibration machine, for each of modelledTests. Empty
/// with a sentence in @p error if the measured results are not those of the tests.
QVector<double> calibrationFactors(const tables &facts, QString &error);

/// The result of @p m, corrected by @p factor and never above what the memory allows.
double estimate(const modelledTest &test, const machine &m, const tables &facts, double factor);

} // namespace reference
