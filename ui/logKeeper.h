// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QTextEdit;

/// Keeps a log readable while the window changes around it: its result lines fit its width, and its
/// end, where it was in sight, stays in sight. Where the user has scrolled up, the log stays there.
class logKeeper : public QObject
{
    Q_OBJECT

public:
    /// @p ownBox must outlive this.
    explicit logKeeper(QTextEdit *ownBox);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void noteValue(int value);
    void keepPlace(int maximum);
    void fitColumns() const;

    QTextEdit *box;
    /// Where the user, or the last message, has left the log.
    int wanted = 0;
    bool isAtEnd = true;
    bool isKeeping = false;
};
