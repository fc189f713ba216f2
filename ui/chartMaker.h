// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QBarSeries>
#include <QChart>

#include <memory>

/// Makes charts of what they are to show.
namespace chartMaker
{

/// The most machines that have a bar set and a name in the legend each. Sets cost the toolkit time
/// that grows faster than their number: two seconds for 2,000.
constexpr int mostSets = 200;

/// The bars of @p content are in the first series of the chart; @p fontSize in points. Beyond
/// mostSets they are the values of one set, and only this machine has a name in the legend.
/// @p likelyWidth of the plot, in pixels, spares a second layout if it is about right.
std::unique_ptr<QtCharts::QChart> chartOf(const chartContent &content, int fontSize,
                                          qreal likelyWidth = 300);

/// The bars of @p chart, or null in one that has none.
QtCharts::QBarSeries *barsOf(const QtCharts::QChart &chart);

/// Where in the scene the names of the legend of @p chart stand, those out of sight too.
QVector<QRectF> legendNames(const QtCharts::QChart &chart);

/// The index of the bar that is value @p index of @p set.
int barIndex(const QtCharts::QChart &chart, const QtCharts::QBarSet *set, int index);

/// Where in the scene the middle of the bar at @p index is, halfway up the plot.
QPointF middleOf(const QtCharts::QChart &chart, int index);

/// Makes the bar at @p index stand out, or no longer. Otherwise outlines are thinner than a pixel
/// where bars are so narrow that nothing would be left of their colours.
void highlight(const QtCharts::QChart &chart, int index, bool isHovered);

} // namespace chartMaker
