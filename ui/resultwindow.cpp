// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/resultwindow.h"

#include "engine/benchBase.h"
#include "engine/testBase.h"
#include "ui/historyWindow.h"
#include "ui/viewExports.h"
#include "ui_resultwindow.h"

#include <QMenu>
#include <QShortcut>

namespace
{

/// What the compare window shows first, of all tests.
chartChoice overview()
{
    chartChoice choice;
    choice.wanted.kind = ranking::allTests;
    choice.wanted.isMerged = true;
    choice.title = resultwindow::tr("combined");
    return choice;
}

} // namespace

resultwindow::resultwindow(QWidget *parent, const benchBase *runner)
    : QMainWindow(parent),
      ui(std::make_unique<Ui::resultwindow>())
{
    ui->setupUi(this);
    ui->plainTextEdit->clear();
    connect(ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    ui->plainTextEdit->setAccessibleName(tr("results of this machine"));
    // The sheet that is inherited has white letters on grey.
    ui->plainTextEdit->setStyleSheet(
        viewExports::menuSheet()
        + QStringLiteral("QPlainTextEdit { color: black; background-color: white; }"));
    if (!runner)
        return;
    fill(*runner);
    addMenus(*runner);
}

resultwindow::~resultwindow() = default;

void resultwindow::addMenus(const benchBase &runner)
{
    const QSize chartSize(900, 600);
    const auto own = [&runner] {
        return runner.getResults().isEmpty() ? benchResults() : runner.getResults().last();
    };
    viewExports::source from;
    from.chart = [&runner] {
        return contentOf(runner.getResults(), runner.getTests(), overview());
    };
    from.table = [&runner, own] { return resultsAsTable(own(), runner.getTests()); };
    from.resultText = [&runner, own] { return resultsAsText(own(), runner.getTests()); };
    from.chartSize = [chartSize] { return chartSize; };
    const auto *exports = new viewExports(this, from, true);
    QMenu *menu = ui->menubar->addMenu(tr("&Results"));
    menu->addActions(exports->actions());
    menu->addSeparator();
    constexpr int fontSize = 9;
    QAction *history = menu->addAction(
        tr("&History of runs..."), this, [this] { historyWindow::open(this, fontSize); },
        QKeySequence(QStringLiteral("Ctrl+H")));
    history->setObjectName(QStringLiteral("actionHistory"));
    menu->addAction(tr("Close"), this, &QWidget::close);
    // The field has no menu of its own: it takes no focus, so nothing can be selected in it.
    ui->plainTextEdit->addActions(exports->actions());
    ui->plainTextEdit->setContextMenuPolicy(Qt::ActionsContextMenu);
    menu->setStyleSheet(viewExports::menuSheet());
}

void resultwindow::fill(const benchBase &runner)
{
    if (runner.getResults().isEmpty())
        return;
    const benchResults &machine = runner.getResults().last();
    ui->plainTextEdit->appendPlainText(machine.describe(benchResults::fullDescription));
    for (const testBase *test : runner.getTests()) {
        const auto result = machine.getTests().constFind(test->getName());
        if (result == machine.getTests().constEnd())
            continue;
        // The blank at the end of a line without a mark is wanted: three columns in every line.
        ui->plainTextEdit->appendPlainText(
            QStringLiteral("%1 %2 %3")
                .arg(test->getName(), QString::number(static_cast<double>(result->value)),
                     test->isSingleOnly() ? QStringLiteral("[hidden]") : QString()));
    }
    ui->plainTextEdit->moveCursor(QTextCursor::Start);
}
