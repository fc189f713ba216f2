// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"
#include "tests/suiteFacts.h"
#include "tools/reference/referenceTables.h"

#include <QString>
#include <QVector>

// How fast a machine that nobody has run would be, worked out from what bounds each workload.
// docs/reference-model.md explains the model and its constants.

namespace reference
{

/// A test of a full run.
struct modelledTest {
    QString name;
    const workloadFacts *work;
    bool multicore;
};

/// The tests of a full run in the order of the suite.
const QVector<modelledTest> &modelledTests();

/// How many units of its workload a result of 1 stands for: a million, or a thousand.
double unitsPerResult(const workloadFacts &work);

/// The cycles that one unit keeps a core busy if memory never makes it wait.
double cyclesPerUnit(const workloadDemand &work, const core &on);

/// How many of its own big cores, alone and at their boost clock, all cores of @p m are worth.
double coreWorth(const workloadFacts &work, const machine &m, const tables &facts);

/// The result that @p m could not exceed if memory alone were the limit.
double memoryBound(const modelledTest &test, const machine &m, const tables &facts);

/// The result before calibration: what the cores could do, or what the memory allows.
double modelled(const modelledTest &test, const machine &m, const tables &facts);

/// Measured divided by modelled result on the calibration machine, for each of modelledTests; an
/// error if the measured results are not those of the tests.
outcome<QVector<double>> calibrationFactors(const tables &facts);

/// The result of @p m, corrected by @p factor and never above what the memory allows.
double estimate(const modelledTest &test, const machine &m, const tables &facts, double factor);

} // namespace reference
