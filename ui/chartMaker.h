// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QBarSeries>
#include <QChart>

#include <memory>

/// Makes charts of what they are to show.
namespace chartMaker
{

/// The bars of @p content are in the first series of the chart; @p fontSize in points.
std::unique_ptr<QtCharts::QChart> chartOf(const chartContent &content, int fontSize);

/// The bars of @p chart, or null in one that has none.
QtCharts::QBarSeries *barsOf(const QtCharts::QChart &chart);

/// Where in the scene the names of the legend of @p chart stand, those out of sight too.
QVector<QRectF> legendNames(const QtCharts::QChart &chart);

/// The outline of the bar at @p index, which is not hovered: thinner than a pixel where bars are so
/// narrow that nothing would be left of their colours.
QPen outlineOf(const QtCharts::QChart &chart, int index);

} // namespace chartMaker
