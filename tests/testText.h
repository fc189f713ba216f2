// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

struct testFacts;

/// What @p test does, what it shows of a processor, and how its result is to be read, in three
/// sentences of plain text.
QString testText(const testFacts &test);

/// The same of the suite's test @p name; empty if it has none of this name.
QString testText(const QString &name);
