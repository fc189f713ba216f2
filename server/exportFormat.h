// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// The words of an export: a root with an element for each upload, with one machine in it, then one
/// for each list, and an end with the numbers of both. What lacks the end is not complete.
namespace exportFormat
{

/// Exports without a number were made before there was one, and have no end.
constexpr int number = 2;

inline const QString root = QStringLiteral("FennickExport");
inline const QString upload = QStringLiteral("upload");
inline const QString list = QStringLiteral("list");
inline const QString end = QStringLiteral("end");
/// The root of a list of machines.
inline const QString listRoot = QStringLiteral("Fennick");

} // namespace exportFormat
