// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/runStatus.h"

#include "ui/elidedLabel.h"

#include <QProgressBar>
#include <QPushButton>
#include <QStatusBar>

namespace
{

constexpr int steps = 1000;

/// The window's white on grey is too faint for small letters.
const QString readable =
    QStringLiteral("QLabel, QPushButton { color: black; }"
                   "QPushButton { padding: 2px 8px; border: 1px solid #404040; }"
                   "QProgressBar { color: black; background: white; border: 1px solid #404040; }"
                   "QProgressBar::chunk { background: #8fb4de; }");

} // namespace

runStatus::runStatus(QStatusBar *bar)
    : QObject(bar),
      line(new elidedLabel(bar)),
      progress(new QProgressBar(bar)),
      details(new QPushButton(tr("details"), bar))
{
    constexpr int widthOfProgress = 160;
    bar->setStyleSheet(readable);
    line->setObjectName(QStringLiteral("labelStatus"));
    progress->setObjectName(QStringLiteral("progressBarRun"));
    progress->setRange(0, steps);
    progress->setFixedWidth(widthOfProgress);
    progress->setAlignment(Qt::AlignCenter);
    details->setObjectName(QStringLiteral("pushButtonDetails"));
    bar->addWidget(line, 1);
    bar->addPermanentWidget(progress);
    bar->addPermanentWidget(details);
    progress->hide();
}

void runStatus::setNote(const QString &text)
{
    note = text;
    show();
}

void runStatus::showRun(const QString &text, double share)
{
    run = text;
    progress->setValue(static_cast<int>(share * steps));
    progress->show();
    details->hide();
    show();
}

void runStatus::endRun()
{
    run.clear();
    progress->hide();
    details->show();
    show();
}

void runStatus::startWaiting(const QString &text)
{
    waitedFor = text;
    show();
    // Whoever waits may do so without an event loop.
    line->repaint();
}

void runStatus::endWaiting()
{
    waitedFor.clear();
    show();
}

void runStatus::show()
{
    line->showText(!waitedFor.isEmpty() ? waitedFor : !run.isEmpty() ? run : note);
}
