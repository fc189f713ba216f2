// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QLabel>

/// A line of plain text that takes the room that there is. What does not fit is an ellipsis, and
/// stands in the tool tip.
class elidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit elidedLabel(QWidget *parent = nullptr);

    /// The layout is not asked anew: the label's size does not depend on its text.
    void showText(const QString &text);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};
