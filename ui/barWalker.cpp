// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/barWalker.h"

#include <QKeyEvent>
#include <QWidget>

#include <algorithm>

barWalker::barWalker(QWidget *ownView) : QObject(ownView)
{
    ownView->installEventFilter(this);
}

void barWalker::restart(int count)
{
    bars = count;
    place = -1;
}

bool barWalker::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::FocusOut)
        goTo(-1);
    if (event->type() == QEvent::KeyPress && goBy(static_cast<const QKeyEvent *>(event)->key()))
        return true;
    return QObject::eventFilter(watched, event);
}

bool barWalker::goBy(int key)
{
    const int last = bars - 1;
    switch (key) {
    case Qt::Key_Right:
        goTo(std::min(place + 1, last));
        return true;
    case Qt::Key_Left: // from nowhere to this machine's, the last one
        goTo(place < 0 ? last : std::max(place - 1, 0));
        return true;
    case Qt::Key_Home:
        goTo(std::min(0, last));
        return true;
    case Qt::Key_End:
        goTo(last);
        return true;
    default:
        return false;
    }
}

void barWalker::goTo(int bar)
{
    if (bar == place)
        return;
    const int before = place;
    place = bar;
    if (before >= 0)
        emit left(before);
    if (place >= 0)
        emit entered(place);
}
