// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"
#include "tools/reference/referenceTables.h"

#include <QByteArray>

namespace reference
{

/// The modelled throughput per clock of every core in coreFamilies, for each single-core test: a
/// header and rows of test, family, core, year, and the result of one core at 1 GHz that never
/// waits for memory, separated by tabs. An error if the measured results are not those of the
/// tests.
outcome<QByteArray> generationTable(const tables &facts);

} // namespace reference
