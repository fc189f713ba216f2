// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class elidedLabel;
class QProgressBar;
class QPushButton;
class QStatusBar;

/// What the status bar tells: what is waited for, else how far a run is, else a note.
class runStatus : public QObject
{
    Q_OBJECT

public:
    /// Puts a line of text, a progress bar and a button for details into @p bar, which owns this.
    explicit runStatus(QStatusBar *bar);

    /// What stands there while nothing else does.
    void setNote(const QString &text);
    /// @p share of the run, from 0 to 1, is over.
    void showRun(const QString &text, double share);
    void endRun();
    void startWaiting(const QString &text);
    void endWaiting();

    QPushButton *detailsButton() const { return details; }

private:
    void show();

    elidedLabel *line;
    QProgressBar *progress;
    QPushButton *details;
    QString note;
    QString run;
    QString waitedFor;
};
