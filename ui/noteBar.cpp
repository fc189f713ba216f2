// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/noteBar.h"

#include <QFontMetrics>
#include <QPainter>
#include <QSizeGrip>
#include <QStyleOption>

namespace
{

constexpr int margin = 3;

} // namespace

noteBar::noteBar(QWidget *parent) : QStatusBar(parent)
{
    connect(this, &QStatusBar::messageChanged, this, &noteBar::makeRoom);
}

void noteBar::setStanding(const QString &text)
{
    standing = text;
    makeRoom();
    update();
}

QString noteBar::wholeText() const
{
    QStringList texts = {standing, currentMessage()};
    texts.removeAll({});
    return texts.join(QLatin1Char('\n'));
}

QRect noteBar::textArea() const
{
    const auto *grip = findChild<QSizeGrip *>();
    const int gripWidth = grip ? grip->sizeHint().width() : 0;
    // As wide as its window from the start, and not only once there is a layout: a message in an
    // early, narrow bar would make the window higher for good.
    return QRect(0, 0, window()->width(), height())
        .adjusted(2 * margin, margin, -margin - gripWidth, -margin);
}

void noteBar::makeRoom()
{
    const QRect room(0, 0, textArea().width(), QWIDGETSIZE_MAX);
    const int height = fontMetrics().boundingRect(room, Qt::TextWordWrap, wholeText()).height();
    setMinimumHeight(wholeText().isEmpty() ? 0 : height + 2 * margin);
    setAccessibleName(tr("notes"));
    setAccessibleDescription(wholeText());
}

void noteBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
    // Whatever colour a style sheet wants: notes are to be read.
    painter.setPen(qGray(palette().window().color().rgb()) > 110 ? Qt::black : Qt::white);
    painter.drawText(textArea(), int(Qt::TextWordWrap) | int(Qt::AlignVCenter), wholeText());
}

void noteBar::resizeEvent(QResizeEvent *event)
{
    QStatusBar::resizeEvent(event);
    makeRoom();
}
