// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// @p text in one line that does nothing to a terminal: what cannot be shown is a question mark.
/// For texts that come from files and from other machines.
QString visibleText(QString text);

/// The columns of a terminal that @p text takes at most: a letter that might take two counts as
/// two.
int columnsOf(const QString &text);
