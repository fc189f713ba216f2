// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QChartView>

/// A chart view whose legend, where it does not fit, is scrolled by the mouse wheel, and not only
/// by dragging it, which nobody would guess.
class legendScrollView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    using QChartView::QChartView;

protected:
    void wheelEvent(QWheelEvent *event) override;

private:
    void dragLegend(qreal distance);
};
