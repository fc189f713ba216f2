// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/elidedLabel.h"

#include "ui/plainText.h"

#include <QPainter>
#include <QStyle>
#include <QStyleOption>

elidedLabel::elidedLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

void elidedLabel::showText(const QString &newText)
{
    if (newText == text())
        return;
    setText(newText);
    setToolTip(plainText::asToolTip(newText));
}

QSize elidedLabel::sizeHint() const
{
    constexpr int fewestLetters = 12;
    const QMargins margins = contentsMargins();
    return QSize(fewestLetters * fontMetrics().averageCharWidth() + margins.left()
                     + margins.right(),
                 fontMetrics().height() + margins.top() + margins.bottom());
}

void elidedLabel::paintEvent(QPaintEvent *)
{
    QStyleOption option;
    option.initFrom(this);
    QPainter painter(this);
    style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
    const QRect room = contentsRect();
    style()->drawItemText(
        &painter, room, int(Qt::AlignLeft) | int(Qt::AlignVCenter), option.palette, isEnabled(),
        fontMetrics().elidedText(text(), Qt::ElideRight, room.width()), foregroundRole());
}
