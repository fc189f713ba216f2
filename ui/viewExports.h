// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QList>
#include <QObject>
#include <QSize>

#include <functional>

class QAction;
class QWidget;

/// What can be taken out of a window: pictures of its chart, the chart as a table, results as text.
/// Each is an action for menus.
class viewExports : public QObject
{
    Q_OBJECT

public:
    /// Where they come from, when they are asked for.
    struct source {
        std::function<chartContent()> chart;
        std::function<QString()> resultText;
        std::function<QString()> table;
        std::function<QSize()> chartSize;
        int fontSize = 9; ///< of the chart, in points
    };

    /// For @p window, which owns this and the actions. Ctrl+C copies the results of a window
    /// where @p isTextFirst, else the picture.
    viewExports(QWidget *window, source from, bool isTextFirst);

    QList<QAction *> actions() const { return all; }
    /// A style sheet for the menus that show them: legible, whatever sheet the window inherits.
    static QString menuSheet();

    void save();
    void copyPicture();
    void copyTable();
    void copyResults();

private:
    QAction *add(const QString &name, const QString &text, void (viewExports::*slot)());
    void saveTo(const QString &path);

    QWidget *window;
    source content;
    QList<QAction *> all;
};
