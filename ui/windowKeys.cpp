// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/windowKeys.h"

#include "tests/suiteFacts.h"
#include "tests/testText.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>

namespace
{

constexpr const char *order[] = {
    "benchButton",
    "compareButton",
    "resolutionComboBox",
    "calcComboBox",
    "comboBoxSingleTestTime",
    "comboBoxAutoRepeat",
    "singleTestButton",
    "pushButtonLoadStandardReference",
    "pushButtonLoadBetaReference",
    "checkBoxDisableResultUpload",
    "checkBoxShowIPCResults",
    "checkBoxClocks",
    "comboBoxCompareWindowFontSize",
    "pushButtonResultsAsText",
    "pushButtonDeleteUserData",
    "pushButtonAbout",
    "pushButtonExit",
    "pushButtonStop",
    "debugBox",
    "pushButtonDetails",
};

QString tr(const char *text)
{
    return QCoreApplication::translate("windowKeys", text);
}

/// @p text in lines of a page's width, each two blanks to the right.
QString paragraph(const QString &text)
{
    constexpr int columns = 76;
    QString lines;
    QString line;
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (!line.isEmpty() && line.size() + 1 + word.size() > columns) {
            lines += QStringLiteral("  ") + line + QLatin1Char('\n');
            line.clear();
        }
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + word;
    }
    return lines + QStringLiteral("  ") + line + QLatin1Char('\n');
}

} // namespace

void windowKeys::orderControls(const QWidget &window)
{
    QWidget *before = nullptr;
    if (const auto *pages = window.findChild<QTabWidget *>())
        before = pages->tabBar();
    for (const char *name : order) {
        auto *control = window.findChild<QWidget *>(QString::fromLatin1(name));
        if (before && control)
            QWidget::setTabOrder(before, control);
        if (control)
            before = control;
    }
}

QString windowKeys::helpPage()
{
    QString page =
        tr("Keys\n"
           "  Tab, Shift+Tab   to the next control, and back\n"
           "  Left, Right      on the tabs: to the next page\n"
           "  Space, Enter     press the button with the ring\n"
           "  Esc              stops a run after the present round\n"
           "  Ctrl+L           hides the log, and shows it again\n"
           "  Ctrl+Q           ends the program\n"
           "  F1               this page\n"
           "\n"
           "A full run\n"
           "  \"start benchmark\" runs all tests of a full run one after the other and\n"
           "  stores the results. Leave the machine alone meanwhile: whatever else runs\n"
           "  makes results worse. The status bar warns before and gives a verdict after;\n"
           "  \"details\" has all of it.\n"
           "\n"
           "The tests\n");
    for (const testFacts &test : suiteFacts()) {
        page += QStringLiteral("%1\n").arg(QString::fromLatin1(test.name).trimmed());
        page += paragraph(testText(test));
    }
    return page;
}

enterPresses::enterPresses(QWidget *window) : QObject(window)
{
    for (QPushButton *button : window->findChildren<QPushButton *>())
        button->installEventFilter(this);
}

bool enterPresses::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        auto *button = qobject_cast<QPushButton *>(watched);
        const bool isEnter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
        // Held down, it would start a second run at the end of the first.
        if (button && isEnter) {
            if (!key->isAutoRepeat())
                button->click();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}
