// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// What the name of a machine ends in whose results come from a model and not from a measurement.
inline QString estimateSuffix()
{
    return QStringLiteral(" (est.)");
}

inline bool isEstimate(const QString &machineName)
{
    return machineName.endsWith(estimateSuffix());
}
