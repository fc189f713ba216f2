// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFont>
#include <QValueAxis>

/// The fonts of a chart.
namespace chartFonts
{

/// Calibri where it is installed; elsewhere one of its width, or the platform's own.
QFont legend(int pointSize);

/// That of a chart's title, whose other texts have @p pointSize.
QFont title(int pointSize);

/// Lets the labels of @p axis, in @p font at the largest, shrink with the plot, within what can be
/// read.
void fitLabels(QtCharts::QValueAxis *axis, const QRectF &plotArea, QFont font);

} // namespace chartFonts
