// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>

class QWidget;

/// The main window without a mouse.
namespace windowKeys
{

/// Lets the keyboard visit the controls of the main window @p window as the eye does: the pages,
/// what stands on them from top to bottom, the log, the status bar.
void orderControls(const QWidget &window);

/// The page of help: what the window does, and its keys.
QString helpPage();

} // namespace windowKeys

/// Lets Return and Enter press the button that has the keyboard, as Space does.
class enterPresses : public QObject
{
    Q_OBJECT

public:
    /// For all buttons inside @p window, which owns this.
    explicit enterPresses(QWidget *window);

    bool eventFilter(QObject *watched, QEvent *event) override;
};
