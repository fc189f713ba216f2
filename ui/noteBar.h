// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStatusBar>

/// A status bar that shows all of its message, in as many lines as it takes.
class noteBar : public QStatusBar
{
    Q_OBJECT

public:
    explicit noteBar(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Where the message is written.
    QRect textArea() const;
    void makeRoom();
};
