// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QChartView>

/// A chart view whose legend, where it does not fit, is scrolled by the mouse wheel, and not only
/// by dragging it, which nobody would guess. It starts at its end, where this machine is, and says
/// how many names are out of sight.
///
/// To screen readers it is a table (ui/chartAccess.h).
class legendScrollView : public QtCharts::QChartView
{
    Q_OBJECT

public:
    explicit legendScrollView(QWidget *parent);

    /// Takes over @p chart, and shows the end of its legend.
    void showFromItsEnd(QtCharts::QChart *chart);
    /// What the chart shows, for those who cannot see it.
    void setTable(const chartContent &content);
    const chartContent &table() const { return content; }
    /// Reads the bar at @p index aloud where somebody listens.
    void announce(int index);
    /// Where on the screen the bar at @p index is.
    QPoint placeOf(int index) const;

    /// How many names of the legend are out of sight at its top and at its bottom.
    struct hiddenNames {
        int above = 0;
        int below = 0;
    };
    hiddenNames outOfSight() const;

protected:
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void dragLegend(qreal distance);
    void paintHint(QPainter &painter, const QString &text, bool isAtTop) const;

    chartContent content;
    bool isAtEnd = true; ///< until somebody scrolls
    bool isLegendDue = true;
};
