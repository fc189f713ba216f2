// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QObject>
#include <QString>

/// The sheet of what the main window's own one leaves open: menus, tool tips, disabled controls.
/// Text has a contrast of at least 4.5 : 1, and what is chosen can be told from the rest.
QString readableSheet();

/// The same of the list of a chooser, which must have it itself: the list is made without the
/// chooser, and keeps what it knew of sheets then.
QString readableListSheet();

/// The sheet of dialogs and pages of text: black on white, with marked focus. Those that they
/// inherit are made for large letters on buttons.
QString readablePageSheet();

/// Gives each message box of a window the sheet of pages.
class readableBoxes : public QObject
{
    Q_OBJECT

public:
    /// For the boxes of @p window, which owns this.
    explicit readableBoxes(QObject *window);

    bool eventFilter(QObject *watched, QEvent *event) override;
};
