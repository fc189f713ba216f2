// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QString>

/// The columns of the log: each result on one line, where there is room for it.
namespace logColumns
{

/// A line as long as those of the suite's results, with figures of eight letters.
QString longestLine();

/// @p font, with the fixed width of its letters narrowed until @p line fits into @p room pixels,
/// but never beyond what can be read. Only the width changes, not family, size or weight.
QFont fitted(QFont font, const QString &line, qreal room);

} // namespace logColumns
