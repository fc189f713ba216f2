// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "tools/reference/referenceTables.h"

#include <QByteArray>
#include <QString>
#include <QVector>

namespace reference
{

/// The modelled results of @p m. @p factors are those of the tests, and one for each.
benchResults modelledMachine(const machine &m, const tables &facts, const QVector<double> &factors);

/// The list of machines that is embedded in the programs, as XML with CR LF at line ends. Empty
/// with a sentence in @p error if the measured results are not those of the tests.
QByteArray machineList(const tables &facts, QString &error);

/// How the model stands to the measured results of the calibration machine, as a table in Markdown.
QByteArray factorTable(const tables &facts, QString &error);

} // namespace reference
