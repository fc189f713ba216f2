// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QDialog>

/// A page of plain text that can be read, scrolled and copied.
class textPage : public QDialog
{
    Q_OBJECT

public:
    /// The columns of @p text line up. The page deletes itself when it is closed.
    textPage(const QString &title, const QString &text, QWidget *parent = nullptr);
};
