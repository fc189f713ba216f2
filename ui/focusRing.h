// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QPointer>
#include <QWidget>

/// Shows which control of a window has the keyboard, by a ring around it. The sheet of the main
/// window takes the focus marks of the style away.
class focusRing : public QWidget
{
    Q_OBJECT

public:
    explicit focusRing(QWidget *window);

    /// The control inside the ring; null while none is.
    QWidget *marked() const { return isHidden() ? nullptr : control; }

    bool eventFilter(QObject *watched, QEvent *event) override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void follow(QWidget *newControl);
    void place();

    QWidget *owner;
    QPointer<QWidget> control;
};
