// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QStatusBar>

/// A status bar that shows all of its message, in as many lines as it takes, and above it a text
/// that stays.
class noteBar : public QStatusBar
{
    Q_OBJECT

public:
    explicit noteBar(QWidget *parent = nullptr);

    /// Shows @p text above all messages, until another one is set.
    void setStanding(const QString &text);
    QString getStanding() const { return standing; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    /// Where the message is written.
    QRect textArea() const;
    QString wholeText() const;
    void makeRoom();

    QString standing;
};
