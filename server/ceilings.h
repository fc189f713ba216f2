// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

/// For each test of a full run, the throughput that no machine of the coming years reaches, in
/// millions of the test's unit per second. An upload with a result at or above it is refused.
const QMap<QString, float> &resultCeilings();
