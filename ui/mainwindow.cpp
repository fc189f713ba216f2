// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/mainwindow.h"

#include "data/examination.h"
#include "engine/benchBase.h"
#include "ui/compareWindow.h"
#include "ui/controlTexts.h"
#include "ui/displayWidget.h"
#include "ui/focusRing.h"
#include "ui/logKeeper.h"
#include "ui/readableSheet.h"
#include "ui/resultwindow.h"
#include "ui/runStatus.h"
#include "ui/textPage.h"
#include "ui/trustNotes.h"
#include "ui/waitSplash.h"
#include "ui/watchedDatabase.h"
#include "ui/windowKeys.h"
#include "ui_mainwindow.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFontInfo>
#include <QMessageBox>
#include <QShortcut>
#include <QStyledItemDelegate>
#include <QTextCursor>
#include <QTimer>

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
      firstLook(quickExamination),
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
    openToEverybody();
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
    QTimer::singleShot(0, this, [this] {
        trust->atStart(firstLook());
        status->setNote(trust->line());
    });
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

void MainWindow::openToEverybody()
{
    ui->centralWidget->setStyleSheet(readableSheet());
    for (QComboBox *chooser : findChildren<QComboBox *>()) {
        // The style's own way of painting a list of choices knows nothing of sheets.
        chooser->setItemDelegate(new QStyledItemDelegate(chooser));
        chooser->view()->setStyleSheet(readableListSheet());
    }
    ui->debugBox->setTabChangesFocus(true);
    controlTexts::apply(*this);
    controlTexts::describeTests(*ui->calcComboBox);
    windowKeys::orderControls(*this);
    new enterPresses(this);
    new focusRing(this);
    new readableBoxes(this);
    addKey(Qt::Key_Escape, [this] { stopByKey(); });
    addKey(QKeySequence(QStringLiteral("Ctrl+Q")), [this] { quitByKey(); });
    addKey(Qt::Key_F1, [this] { showHelp(); });
    ui->benchButton->setFocus();
}

void MainWindow::addKey(const QKeySequence &key, const std::function<void()> &pressed)
{
    auto *shortcut = new QShortcut(key, this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, this, pressed);
}

void MainWindow::quitByKey()
{
    if (isRunning)
        close();
    else
        doClose();
}

void MainWindow::showHelp()
{
    auto *page = new textPage(tr("help"), windowKeys::helpPage(), this);
    page->show();
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

void MainWindow::setExamination(const std::function<doctorSubject()> &look)
{
    trust = std::make_unique<trustNotes>(look);
    firstLook = look;
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
    isClosed = true;
}
