// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/resultwindow.h"

#include "engine/benchBase.h"
#include "engine/testBase.h"
#include "ui_resultwindow.h"

resultwindow::resultwindow(QWidget *parent, const benchBase *runner)
    : QMainWindow(parent),
      ui(std::make_unique<Ui::resultwindow>())
{
    ui->setupUi(this);
    ui->plainTextEdit->clear();
    connect(ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    if (runner)
        fill(*runner);
}

resultwindow::~resultwindow() = default;

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
