// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QWidget;

/// Walks along the bars of a chart with the arrow keys, Home and End, while its view has the focus.
class barWalker : public QObject
{
    Q_OBJECT

public:
    /// For @p ownView, which owns this.
    explicit barWalker(QWidget *ownView);

    /// There are @p count bars now, and nobody is on any.
    void restart(int count);
    /// The bar that the keyboard is on, or -1.
    int current() const { return place; }

    bool eventFilter(QObject *watched, QEvent *event) override;

signals:
    void left(int bar);
    void entered(int bar);

private:
    bool goBy(int key);
    void goTo(int bar);

    int bars = 0;
    int place = -1;
};
