// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/reference/referenceTables.h"

#include <QByteArray>

namespace reference
{

/// The modelled throughput per clock of every core in coreFamilies, for each single-core test: a
/// header and rows of test, family, core, year, and the result of one core at 1 GHz that never
/// waits for memory, separated by tabs. An error if the measured results are not those of the
/// tests.
tl::expected<QByteArray, QString> generationTable(const tables &facts);

} // namespace reference
