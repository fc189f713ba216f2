// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

class legendScrollView;

/// A chart as screen readers see it: a table with a row for each bar, of its name and its value.
namespace chartAccess
{

/// Makes all chart views such tables, from the next one on. More than once does no harm.
void install();

/// Says that the keyboard is on the bar at @p index of @p view.
void announce(legendScrollView *view, int index);

} // namespace chartAccess
