// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

/// Names that strangers chose, for widgets that read what they show as HTML.
namespace plainText
{

/// What a legend or a tool tip shows of a name at most. Qt Charts tries one text per letter when it
/// shortens a label, so that a long one costs its length squared.
constexpr int longestName = 100;

/// @p text with an ellipsis for its end, if it has more than @p longest letters.
QString shortened(const QString &text, int longest = longestName);

/// HTML that shows @p text letter for letter, each of its blanks and lines included.
QString asHtml(const QString &text);

/// @p text as a tool tip shows it letter for letter: unchanged, unless it would pass for HTML.
QString asToolTip(const QString &text);

} // namespace plainText
