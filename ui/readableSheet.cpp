// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/readableSheet.h"

QString readableSheet()
{
    return QStringLiteral(
        "QComboBox QAbstractItemView { color: black; background: white; border: 1px solid #404040;"
        " selection-color: white; selection-background-color: #1f4e89; }"
        "QMenu { color: black; background: white; border: 1px solid #404040; }"
        "QMenu::item { padding: 4px 24px; background: white; }"
        "QMenu::item:selected { color: white; background: #1f4e89; }"
        "QMenu::item:disabled { color: #606060; background: white; }"
        "QMenu::separator { height: 1px; background: #a0a0a0; }"
        "QToolTip { color: black; background: #ffffe1; border: 1px solid #404040; }"
        "QTextEdit { selection-color: white; selection-background-color: #1f4e89; }"
        "QCheckBox:disabled, QPushButton:disabled, QComboBox:disabled { color: #303030; }");
}
