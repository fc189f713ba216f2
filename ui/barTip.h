// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

class QPoint;
class QWidget;

/// The tool tip of the bar under the mouse. It stays for as long as the mouse does.
///
/// A graphics view answers the toolkit's own tool-tip event, which comes as soon as the mouse
/// rests, with the tip of a graphics item, and an empty one hides ours; so that event is answered
/// here.
class barTip : public QObject
{
    Q_OBJECT

public:
    /// For the bars that are drawn on @p ownViewport, which must outlive this.
    explicit barTip(QWidget *ownViewport);

    /// The mouse is on @p bar, of which only the address counts. @p text is shown letter for
    /// letter.
    void enter(const void *bar, const QString &text);
    /// The bar that the keyboard is on, which is at @p globalPosition.
    void enter(const void *bar, const QString &text, const QPoint &globalPosition);
    /// The mouse has left @p bar; the tip of another one stays.
    void leave(const void *bar);
    /// The bars are gone.
    void clear();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void show(const QPoint &globalPosition) const;

    QWidget *viewport;
    const void *current = nullptr;
    QString tip;
};
