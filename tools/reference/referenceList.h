// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "engine/outcome.h"
#include "tools/reference/referenceTables.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace reference
{

/// The modelled results of @p m; @p factors holds one factor for each of modelledTests.
benchResults modelledMachine(const machine &m, const tables &facts, const QVector<double> &factors);

/// The list of machines that is embedded in the programs, as XML with CR LF line ends; an error if
/// the measured results are not those of the tests.
outcome<QByteArray> machineList(const tables &facts);

/// The calibration as a Markdown table: for each test the measured result, the modelled one before
/// calibration, and the factor between them. The same error as machineList.
outcome<QByteArray> factorTable(const tables &facts);

} // namespace reference
