// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/legendScrollView.h"

#include <QGraphicsSceneMouseEvent>
#include <QLegend>
#include <QWheelEvent>

void legendScrollView::wheelEvent(QWheelEvent *event)
{
    const QRectF legend = chart()->legend()->sceneBoundingRect();
    if (!legend.contains(mapToScene(event->position().toPoint()))) {
        QChartView::wheelEvent(event);
        return;
    }
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
