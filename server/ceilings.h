// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QMap>
#include <QString>

/// How far above the best machine of the built-in list a result may lie.
constexpr float ceilingFactor = 30;

/// For each test of a full run, the throughput that no machine of the coming years reaches, in
/// millions of the test's unit per second: ceilingFactor times the best of the built-in list,
/// rounded up to two digits. An upload with a result at or above it is refused.
const QMap<QString, float> &resultCeilings();
