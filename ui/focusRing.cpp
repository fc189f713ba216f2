// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/focusRing.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QTabBar>

namespace
{

constexpr int thickness = 2;

} // namespace

focusRing::focusRing(QWidget *window) : QWidget(window), owner(window)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    hide();
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { follow(now); });
}

void focusRing::follow(QWidget *newControl)
{
    if (control) {
        control->removeEventFilter(this);
        if (auto *tabs = qobject_cast<QTabBar *>(control.data()))
            disconnect(tabs, &QTabBar::currentChanged, this, nullptr);
    }
    control = newControl && owner->isAncestorOf(newControl) && newControl->window() == owner
                  ? newControl
                  : nullptr;
    if (!control) {
        hide();
        return;
    }
    control->installEventFilter(this);
    if (auto *tabs = qobject_cast<QTabBar *>(control.data()))
        connect(tabs, &QTabBar::currentChanged, this, [this] { place(); });
    place();
}

void focusRing::place()
{
    QRect area = control->rect();
    if (const auto *tabs = qobject_cast<QTabBar *>(control.data()))
        area = tabs->tabRect(tabs->currentIndex());
    setGeometry(QRect(control->mapTo(owner, area.topLeft()), area.size()));
    setVisible(control->isVisible());
    raise();
}

bool focusRing::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::Hide:
        if (watched == control)
            place();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void focusRing::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QPen pen(Qt::black, thickness);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}
