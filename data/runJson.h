// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "engine/outcome.h"

#include <QByteArray>

/// Runs as JSON for other programs and for later: docs/json.md has the fields, docs/run.schema.json
/// the same for validators.
namespace runJson
{

/// The number of the schema. Members may be added under the same number; readers pass over those
/// that they do not know.
constexpr int schema = 1;

/// What is longer is no run, bytes.
constexpr qint64 longestFile = 64 << 20;

} // namespace runJson

/// @p run as one line of JSON that readRunRecord takes. Unknown values are absent, and so are
/// values that are no finite number. Texts are cut to their longest length, and beyond 10,000 tests
/// or a million rounds of all tests the rest is left out; results hold all rounds in any case.
QByteArray toJson(const runRecord &run);

/// The run in @p json. What follows from its other values, such as statistics and verdicts, is not
/// read. A member of a wrong type or out of its bounds is refused with its place.
outcome<runRecord> readRunRecord(const QByteArray &json);
