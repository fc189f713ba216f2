// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/barTip.h"

#include "ui/plainText.h"

#include <QCursor>
#include <QHelpEvent>
#include <QToolTip>
#include <QWidget>

barTip::barTip(QWidget *ownViewport) : QObject(ownViewport), viewport(ownViewport)
{
    viewport->installEventFilter(this);
}

void barTip::enter(const void *bar, const QString &text)
{
    enter(bar, text, QCursor::pos());
}

void barTip::enter(const void *bar, const QString &text, const QPoint &globalPosition)
{
    current = bar;
    tip = plainText::asToolTip(text);
    show(globalPosition);
}

void barTip::leave(const void *bar)
{
    if (bar == current)
        clear();
}

void barTip::clear()
{
    if (!current)
        return;
    current = nullptr;
    QToolTip::hideText();
}

bool barTip::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ToolTip || !current)
        return QObject::eventFilter(watched, event);
    show(static_cast<const QHelpEvent *>(event)->globalPos());
    return true;
}

void barTip::show(const QPoint &globalPosition) const
{
    // Without a time of its own, a tip goes away after ten seconds. The largest one would overflow
    // where the toolkit rounds the interval of a timer.
    constexpr int aDay = 24 * 60 * 60 * 1000;
    QToolTip::showText(globalPosition, tip, viewport, {}, aDay);
}
