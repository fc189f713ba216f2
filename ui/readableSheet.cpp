// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/readableSheet.h"

#include <QChildEvent>
#include <QMessageBox>

QString readableSheet()
{
    return QStringLiteral(
        "QMenu { color: black; background: white; border: 1px solid #404040; }"
        "QMenu::item { padding: 4px 24px; background: white; }"
        "QMenu::item:selected { color: white; background: #1f4e89; }"
        "QMenu::item:disabled { color: #606060; background: white; }"
        "QMenu::separator { height: 1px; background: #a0a0a0; }"
        "QToolTip { color: black; background: #ffffe1; border: 1px solid #404040; }"
        "QTextEdit { selection-color: white; selection-background-color: #1f4e89; }"
        "QCheckBox:disabled, QPushButton:disabled, QComboBox:disabled { color: #303030; }");
}

QString readableListSheet()
{
    return QStringLiteral(
        "QAbstractItemView { border: 1px solid #404040; }"
        "QAbstractItemView, QAbstractItemView QWidget { background: white; }"
        "QAbstractItemView::item { color: black; padding: 2px; }"
        "QAbstractItemView::item:selected { color: white; background: #1f4e89; }");
}

QString readablePageSheet()
{
    return QStringLiteral(
        "QWidget { color: black; background: white; }"
        "QPlainTextEdit { selection-color: white; selection-background-color: #1f4e89; }"
        "QPushButton { padding: 4px 16px; border: 1px solid #404040; }"
        "QPushButton:focus { border: 2px solid black; }");
}

readableBoxes::readableBoxes(QObject *window) : QObject(window)
{
    window->installEventFilter(this);
}

bool readableBoxes::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ChildPolished) {
        QObject *child = static_cast<QChildEvent *>(event)->child();
        if (auto *box = qobject_cast<QMessageBox *>(child); box && box->styleSheet().isEmpty())
            box->setStyleSheet(readablePageSheet());
    }
    return QObject::eventFilter(watched, event);
}
