// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/legendScrollView.h"

#include "ui/chartAccess.h"
#include "ui/chartMaker.h"

#include <QGraphicsSceneMouseEvent>
#include <QLegend>
#include <QPainter>
#include <QWheelEvent>

namespace
{

/// Further than any legend is long.
constexpr qreal veryFar = 1e6;

} // namespace

legendScrollView::legendScrollView(QWidget *parent) : QChartView(parent)
{
    chartAccess::install();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("chart"));
}

void legendScrollView::showFromItsEnd(QtCharts::QChart *chart)
{
    setChart(chart);
    isAtEnd = true;
    isLegendDue = true;
}

void legendScrollView::setTable(const chartContent &shown)
{
    content = shown;
    setAccessibleName(tr("chart: %1").arg(content.title));
    setAccessibleDescription(content.remarks());
}

void legendScrollView::announce(int index)
{
    chartAccess::announce(this, index);
}

QPoint legendScrollView::placeOf(int index) const
{
    return viewport()->mapToGlobal(mapFromScene(chartMaker::middleOf(*chart(), index)));
}

legendScrollView::hiddenNames legendScrollView::outOfSight() const
{
    hiddenNames found;
    const QRectF room = chart()->legend()->sceneBoundingRect();
    for (const QRectF &name : chartMaker::legendNames(*chart())) {
        found.above += name.center().y() < room.top() ? 1 : 0;
        found.below += name.center().y() > room.bottom() ? 1 : 0;
    }
    return found;
}

void legendScrollView::resizeEvent(QResizeEvent *event)
{
    QChartView::resizeEvent(event);
    isLegendDue = isAtEnd;
}

void legendScrollView::paintEvent(QPaintEvent *event)
{
    if (isLegendDue) { // only now it has its size
        isLegendDue = false;
        dragLegend(-veryFar);
    }
    QChartView::paintEvent(event);
    QPainter painter(viewport());
    const hiddenNames hidden = outOfSight();
    if (hidden.above > 0)
        paintHint(painter, tr("\u25B2 %1 more").arg(hidden.above), true);
    if (hidden.below > 0)
        paintHint(painter, tr("\u25BC %1 more").arg(hidden.below), false);
    if (hasFocus()) {
        painter.setPen(QPen(palette().highlight(), 2));
        painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
    }
}

void legendScrollView::focusInEvent(QFocusEvent *event)
{
    QChartView::focusInEvent(event);
    viewport()->update();
}

void legendScrollView::focusOutEvent(QFocusEvent *event)
{
    QChartView::focusOutEvent(event);
    viewport()->update();
}

void legendScrollView::paintHint(QPainter &painter, const QString &text, bool isAtTop) const
{
    QFont font = chart()->legend()->font();
    font.setBold(true);
    painter.setFont(font);
    const QRect legend = mapFromScene(chart()->legend()->sceneBoundingRect()).boundingRect();
    const int height = QFontMetrics(font).height() + 2;
    const QRect strip(legend.left(), isAtTop ? legend.top() : legend.bottom() - height,
                      legend.width(), height);
    painter.fillRect(strip, chart()->backgroundBrush().color());
    painter.setPen(chart()->legend()->labelColor());
    painter.drawText(strip, Qt::AlignHCenter | Qt::AlignVCenter, text);
}

void legendScrollView::wheelEvent(QWheelEvent *event)
{
    const QRectF legend = chart()->legend()->sceneBoundingRect();
    if (!legend.contains(mapToScene(event->position().toPoint()))) {
        QChartView::wheelEvent(event);
        return;
    }
    isAtEnd = false;
    // Half of the usual 120 per notch: about three lines of the legend.
    dragLegend(event->angleDelta().y() / 2.0);
    event->accept();
}

/// Qt's legend can be dragged, but offers no call for it.
void legendScrollView::dragLegend(qreal distance)
{
    QtCharts::QLegend *legend = chart()->legend();
    const QPointF from = legend->rect().center();
    const QPointF to = from + QPointF(0, distance);
    const auto send = [&](QEvent::Type type, const QPointF &last, const QPointF &position) {
        QGraphicsSceneMouseEvent event(type);
        event.setButton(Qt::LeftButton);
        event.setPos(position);
        event.setLastPos(last);
        event.setScenePos(legend->mapToScene(position));
        event.setLastScenePos(legend->mapToScene(last));
        event.setScreenPos(position.toPoint());
        event.setLastScreenPos(last.toPoint());
        event.setButtonDownPos(Qt::LeftButton, from);
        event.setButtonDownScenePos(Qt::LeftButton, legend->mapToScene(from));
        event.setButtonDownScreenPos(Qt::LeftButton, from.toPoint());
        scene()->sendEvent(legend, &event);
    };
    send(QEvent::GraphicsSceneMousePress, from, from);
    send(QEvent::GraphicsSceneMouseMove, from, to);
    send(QEvent::GraphicsSceneMouseRelease, to, to);
}
