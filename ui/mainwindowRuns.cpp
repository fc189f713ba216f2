// SPDX-License-Identifier: GPL-3.0-or-later

// The runs of the window, and what it does meanwhile.

#include "ui/mainwindow.h"

#include "data/runStore.h"
#include "engine/benchBase.h"
#include "ui/compareWindow.h"
#include "ui/displayWidget.h"
#include "ui/observedRun.h"
#include "ui/runStatus.h"
#include "ui/trustNotes.h"
#include "ui_mainwindow.h"

#include <QThread>
#include <QTimer>

#include <algorithm>
#include <utility>

void MainWindow::updateStart(testBase *test)
{
    display->setTest(test);
}

void MainWindow::updateProgress(testBase *, int elapsedMs)
{
    display->setFrameTime(elapsedMs);
    update();
    QCoreApplication::processEvents();
}

void MainWindow::updateEnd(testBase *)
{
    if (!display)
        return;
    // The frame is about to be freed, and the window can be painted before another one comes.
    display->setTest(nullptr);
    display->setTestIndex(display->testIndex() + 1);
}

bool MainWindow::isStopRequested()
{
    return stopFlag;
}

void MainWindow::benchStart()
{
    warnBeforeRun();
    const QVector<testBase *> tests = runner->getTests();
    const auto count = static_cast<int>(std::count_if(
        tests.begin(), tests.end(), [](const testBase *test) { return !test->isSingleOnly(); }));
    runner->setTestTime(benchBase::standardTestTime);
    const float seconds = runner->getTestTimeSeconds() * static_cast<float>(count);
    if (!isConfirmed(tr("The benchmark will takes ~%1 seconds, are you ready?")
                         .arg(static_cast<double>(seconds))))
        return;

    prepareDisplay(true, count);
    runState.runStateChanged(true);
    showFrames();
    const bool isStopped = runRecorded(count);
    if (!isStopped) {
        runner->storeUserData();
        if (!ui->checkBoxDisableResultUpload->isChecked())
            runner->uploadResults();
    }
    showControls();
    runState.runStateChanged(false);
    ui->compareButton->click();
    // Who has closed the window wants the program to end, and no other window to keep it.
    if (isClosed && compareWindowInstance) {
        compareWindowInstance->hide();
        if (QThread::currentThread()->loopLevel() > 0)
            QCoreApplication::exit(0);
    }
}

bool MainWindow::runRecorded(int testCount)
{
    runSettings settings;
    settings.testTime = benchBase::standardTestTime;
    observedRun run(*runner, *status, settings, testCount);
    const bool isStopped = runner->runBenchmark();
    const runRecord record = run.finish(isStopped);
    const auto kept = runStore::ofUser().append(record);
    trust->afterRun(record, kept ? QString() : tr("The run is not kept: %1").arg(kept.error()));
    status->setNote(trust->line());
    return isStopped;
}

bool MainWindow::runSingleRecorded(const QString &testName, const QString &resolutionName)
{
    runSettings settings;
    settings.wanted = runSettings::someTests;
    settings.testTime = chosenTestTime();
    observedRun run(*runner, *status, settings, 1);
    const bool isRun = runner->runSingleTest(testName, resolutionName);
    trust->afterRun(run.finish(isStopRequested()));
    status->setNote(trust->line());
    return isRun;
}

void MainWindow::benchSingleStart()
{
    warnBeforeRun();
    showFrames();
    const QString testName = ui->calcComboBox->currentText();
    const QString resolutionName = ui->resolutionComboBox->currentText();
    prepareDisplay(false, 0);
    runner->setTestTime(chosenTestTime());
    const bool isRepeated = ui->comboBoxAutoRepeat->currentText() == QLatin1String("on");
    stopFlag = false;
    ui->pushButtonStop->show();
    ui->pushButtonStop->setFocus();
    do {
        const bool isRun = runSingleRecorded(testName, resolutionName) && chosenTestTime() > 0;
        if (isRepeated && !isRun)
            waitForNextTry();
    } while (isRepeated && !isStopRequested());
    ui->pushButtonStop->hide();
    stopFlag = false;
    runner->setTestTime(benchBase::standardTestTime);
    showControls();
}

int MainWindow::chosenTestTime() const
{
    const int seconds = ui->comboBoxSingleTestTime->currentText().toInt();
    return static_cast<int>(static_cast<float>(seconds) * 1000.0F);
}

void MainWindow::waitForNextTry()
{
    constexpr int shortestWait = 1000;
    QTimer timer;
    timer.setSingleShot(true);
    timer.start(std::max(chosenTestTime(), shortestWait));
    while (timer.isActive() && !isStopRequested())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

void MainWindow::stopByKey()
{
    if (!isRunning || stopFlag)
        return;
    isStoppedByKey = true;
    singleTestStop();
}

void MainWindow::showFrames()
{
    isRunning = true;
    isClosed = false;
    hadFocus = focusWidget();
    ui->tabWidget->hide();
    display->show();
}

void MainWindow::showControls()
{
    display->setTest(nullptr);
    display->hide();
    ui->tabWidget->show();
    isRunning = false;
    if (std::exchange(isStoppedByKey, false) && !isClosed)
        stopFlag = false;
    if (hadFocus)
        hadFocus->setFocus();
}

void MainWindow::prepareDisplay(bool isFullRun, int testCount)
{
    display->setShowProgress(isFullRun);
    display->setShowClocks(ui->checkBoxClocks->isChecked());
    if (!isFullRun)
        return;
    display->setTestIndex(0);
    display->setTestCount(testCount);
}
