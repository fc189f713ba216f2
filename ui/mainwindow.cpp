// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mainwindow.h"

#include "data/examination.h"
#include "data/runStore.h"
#include "engine/benchBase.h"
#include "ui/compareWindow.h"
#include "ui/displayWidget.h"
#include "ui/logKeeper.h"
#include "ui/observedRun.h"
#include "ui/resultwindow.h"
#include "ui/runStatus.h"
#include "ui/textPage.h"
#include "ui/trustNotes.h"
#include "ui/waitSplash.h"
#include "ui/watchedDatabase.h"
#include "ui_mainwindow.h"

#include <QApplication>
#include <QFontInfo>
#include <QMessageBox>
#include <QTextCursor>
#include <QTimer>

#include <algorithm>

namespace
{

/// The window's own font has one point, which its children would inherit; set one by one, family
/// and size of the platform's font stay their own.
QFont platformFont()
{
    const QFontInfo platform(QApplication::font());
    QFont font;
    font.setFamily(platform.family());
    font.setPointSizeF(platform.pointSizeF());
    return font;
}

} // namespace

MainWindow::MainWindow(QWidget *parent, const suiteFactory &tests,
                       std::unique_ptr<onlineDatabase> database)
    : QMainWindow(parent),
      ui(std::make_unique<Ui::MainWindow>()),
      trust(std::make_unique<trustNotes>(examination)),
      splash(std::make_unique<waitSplash>())
{
    ui->setupUi(this);
    addStatus();
    ui->calcComboBox->setMinimumHeight(0);
    ui->resolutionComboBox->setMinimumHeight(0);
    new logKeeper(ui->debugBox);
    runner =
        std::make_unique<benchBase>(this, this, this, tests(this), watched(std::move(database)));
    setWindowTitle(runner->getTitle());
    fillChoosers();
    addDisplay();
    connectControls();
    ui->checkBoxClocks->setEnabled(false);
    loadStandardReferenceData();
    ui->pushButtonStop->hide();
    splash.reset();
}

MainWindow::~MainWindow() = default;

void MainWindow::fillChoosers()
{
    ui->resolutionComboBox->addItems(runner->getResolutionNames());
    ui->calcComboBox->addItems(runner->getTestNames());
}

void MainWindow::addDisplay()
{
    display = new displayWidget(this);
    display->setFont(platformFont());
    display->setMinimumSize(10, 10);
    display->hide();
    ui->gridLayout->addWidget(display, 0, 0);
}

void MainWindow::addStatus()
{
    QFont font = platformFont();
    font.setWeight(QFont::Normal);
    ui->statusBar->setFont(font);
    status = new runStatus(ui->statusBar);
    connect(status->detailsButton(), &QPushButton::clicked, this, [this] { showDetails(); });
    // The window comes first.
    QTimer::singleShot(0, this, [this] { warnBeforeRun(); });
}

std::unique_ptr<onlineDatabase> MainWindow::watched(std::unique_ptr<onlineDatabase> database)
{
    if (!database)
        return nullptr;
    const auto starts = [this](const QString &text) {
        if (splash)
            splash->start(text);
        else
            status->startWaiting(text);
    };
    const auto ends = [this] {
        if (splash)
            splash->end();
        else
            status->endWaiting();
    };
    return std::make_unique<watchedDatabase>(std::move(database), starts, ends);
}

void MainWindow::connectControls()
{
    const auto onClick = [this](QPushButton *button, void (MainWindow::*slot)()) {
        connect(button, &QPushButton::clicked, this, slot);
    };
    onClick(ui->benchButton, &MainWindow::benchStart);
    onClick(ui->singleTestButton, &MainWindow::benchSingleStart);
    onClick(ui->pushButtonAbout, &MainWindow::about);
    onClick(ui->compareButton, &MainWindow::compareResults);
    onClick(ui->pushButtonResultsAsText, &MainWindow::showResults);
    onClick(ui->pushButtonLoadStandardReference, &MainWindow::loadStandardReferenceData);
    onClick(ui->pushButtonLoadBetaReference, &MainWindow::loadBetaReferenceData);
    onClick(ui->pushButtonDeleteUserData, &MainWindow::deleteUserData);
    onClick(ui->pushButtonExit, &MainWindow::doClose);
    onClick(ui->pushButtonStop, &MainWindow::singleTestStop);
}

void MainWindow::print(const QString &text)
{
    ui->debugBox->moveCursor(QTextCursor::End);
    ui->debugBox->insertPlainText(text);
}

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

void MainWindow::setExamination(const std::function<doctorSubject()> &look)
{
    trust = std::make_unique<trustNotes>(look);
}

void MainWindow::warnBeforeRun()
{
    trust->beforeRun();
    status->setNote(trust->line());
}

void MainWindow::showDetails()
{
    auto *page = new textPage(tr("details"), trust->page(), this);
    page->show();
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

void MainWindow::showFrames()
{
    ui->tabWidget->hide();
    display->show();
}

void MainWindow::showControls()
{
    display->setTest(nullptr);
    display->hide();
    ui->tabWidget->show();
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

bool MainWindow::isConfirmed(const QString &question)
{
    return QMessageBox::question(this, QString(), question, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::Yes)
           != QMessageBox::No;
}

void MainWindow::about()
{
    constexpr float revision = 1.082F;
    const double version = QStringLiteral(FENNICK_VERSION).toDouble();
    QMessageBox::about(
        this, tr("about"),
        tr("Written by Harrowdale, no warranty ...\nVersion %1 Revision %2")
            .arg(QString::number(version), QString::number(static_cast<double>(revision))));
}

void MainWindow::compareResults()
{
    delete compareWindowInstance;
    compareWindowInstance =
        new compareWindow(this, runner.get(), ui->checkBoxShowIPCResults->isChecked(),
                          ui->comboBoxCompareWindowFontSize->currentText().toInt());
    compareWindowInstance->show();
}

void MainWindow::showResults()
{
    delete resultWindowInstance;
    resultWindowInstance = new resultwindow(this, runner.get());
    resultWindowInstance->show();
}

void MainWindow::hideDebugBox(bool hidden)
{
    ui->debugBox->setVisible(!hidden);
}

void MainWindow::singleTestStop()
{
    stopFlag = true;
}

void MainWindow::loadStandardReferenceData()
{
    runner->loadReferenceData(benchBase::normalReference);
    runner->loadUserData();
}

void MainWindow::loadBetaReferenceData()
{
    if (!isConfirmed(tr("Do you relay want to load BETA reference benchmark data?")))
        return;
    runner->loadReferenceData(benchBase::betaReference);
    runner->loadUserData();
}

void MainWindow::deleteUserData()
{
    runner->removeUserData();
    loadStandardReferenceData();
}

void MainWindow::doClose()
{
    const auto answer = QMessageBox::question(this, tr("quit?"), tr("Do you relay want to quit?"),
                                              QMessageBox::Yes | QMessageBox::No, QMessageBox::Yes);
    if (answer == QMessageBox::Yes)
        close();
}

void MainWindow::closeEvent(QCloseEvent *)
{
    stopFlag = true;
}
