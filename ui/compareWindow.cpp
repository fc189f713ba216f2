// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareWindow.h"

#include "data/benchDataAccess.h"
#include "engine/testBase.h"
#include "ui/barTip.h"
#include "ui/barWalker.h"
#include "ui/chartMaker.h"
#include "ui/historyWindow.h"
#include "ui/legendScrollView.h"
#include "ui/viewExports.h"
#include "ui_compareWindow.h"

#include <QAction>
#include <QBarSeries>
#include <QBarSet>
#include <QDebug>
#include <QGestureEvent>
#include <QShortcut>

namespace
{

/// What stands before a test's name in the chooser.
constexpr int testPrefixLength = 6;

/// Below this height, in pixels, nothing could be told apart.
constexpr int smallestChart = 220;

benchResults::descriptionStyle labelStyle(Qt::CheckState state)
{
    switch (state) {
    case Qt::Unchecked:
        return benchResults::nameDescription;
    case Qt::PartiallyChecked:
        return benchResults::processorDescription;
    case Qt::Checked:
        break;
    }
    return benchResults::fullDescription;
}

} // namespace

compareWindow::compareWindow(QWidget *parent, benchDataAccess *machineData, bool showIpcOption,
                             int legendFontSize)
    : QMainWindow(parent),
      dataAccess(machineData),
      fontSize(legendFontSize),
      ui(std::make_unique<Ui::compareWindow>())
{
    ui->setupUi(this);
    for (QComboBox *box : {ui->comboBoxSortBy, ui->comboBoxCount, ui->comboBox})
        box->setMinimumHeight(0);
    for (const Qt::GestureType gesture : {Qt::PanGesture, Qt::PinchGesture, Qt::SwipeGesture})
        grabGesture(gesture);
    fillChoosers();
    if (!dataAccess)
        return;

    fillTests(showIpcOption);
    nameControls();
    addView();
    addMenu();
    connectControls();
    updateChart(0);
}

compareWindow::~compareWindow()
{
    // The chart loses the focus when it goes, which is after this has gone.
    if (walker)
        walker->disconnect(this);
}

void compareWindow::addView()
{
    chartView = new legendScrollView(this);
    chartView->setRenderHint(QPainter::Antialiasing);
    chartView->setMinimumHeight(smallestChart);
    ui->gridLayout->addWidget(chartView);
    setTabOrder(ui->comboBox, chartView);
    setTabOrder(chartView, ui->closeButton);
    tip = new barTip(chartView->viewport());
    walker = new barWalker(chartView);
    connect(walker, &barWalker::left, this, [this](int bar) { highlight(bar, false); });
    connect(walker, &barWalker::entered, this, [this](int bar) {
        highlight(bar, true);
        chartView->announce(bar);
    });
}

void compareWindow::nameControls()
{
    const auto name = [](QWidget *widget, const QString &text) { widget->setAccessibleName(text); };
    name(ui->comboBox, tr("what is compared"));
    name(ui->comboBoxSortBy, tr("which devices"));
    name(ui->comboBoxCount, tr("number of devices"));
    name(ui->checkBoxAndroid, tr("Android devices"));
    name(ui->checkBoxWindows, tr("Windows devices"));
    name(ui->checkBoxLinux, tr("Linux devices"));
    name(ui->checkBoxMerged, tr("merge devices of one name"));
    name(ui->checkBoxIPC, tr("results per clock"));
    name(ui->checkBoxNameType, tr("labels: short, processor or all"));
}

void compareWindow::addMenu()
{
    viewExports::source from;
    from.chart = [this] { return shown; };
    from.table = [this] { return tableOf(shown); };
    from.resultText = [this] {
        const QVector<benchResults> &machines = dataAccess->getResults();
        return machines.isEmpty() ? QString()
                                  : resultsAsText(machines.last(), dataAccess->getTests());
    };
    from.chartSize = [this] { return chartView->size(); };
    from.fontSize = fontSize;
    const auto *exports = new viewExports(this, from, false);
    chartView->addActions(exports->actions());
    auto *history = new QAction(tr("&History of runs..."), this);
    history->setObjectName(QStringLiteral("actionHistory"));
    history->setShortcut(QKeySequence(QStringLiteral("Ctrl+H")));
    connect(history, &QAction::triggered, this, [this] { historyWindow::open(this, fontSize); });
    chartView->addAction(history);
    chartView->setContextMenuPolicy(Qt::ActionsContextMenu);
    chartView->setStyleSheet(viewExports::menuSheet());
}

void compareWindow::fillChoosers()
{
    const auto addMode = [this](const QString &text, ranking::selectionMode mode) {
        ui->comboBoxSortBy->addItem(text, int(mode));
    };
    addMode(tr("Mixed devices"), ranking::mixedDevices);
    addMode(tr("Top devices"), ranking::topDevices);
    addMode(tr("Medium devices"), ranking::mediumDevices);
    addMode(tr("Last devices"), ranking::lastDevices);
    addMode(tr("All devices"), ranking::allDevices);
    for (int count = 20; count <= 50; count += 5)
        ui->comboBoxCount->addItem(QStringLiteral("%1").arg(count));
}

void compareWindow::fillTests(bool showIpcOption)
{
    ui->checkBoxIPC->setVisible(showIpcOption);
    const auto addKind = [this](const QString &text, ranking::testKind kind) {
        ui->comboBox->addItem(text, int(kind));
    };
    addKind(tr("combined (single core)"), ranking::singleCoreTests);
    addKind(tr("combined (multi core)"), ranking::multiCoreTests);
    addKind(tr("combined"), ranking::allTests);
    for (const testBase *test : dataAccess->getTests()) {
        if (!test->isSingleOnly())
            addKind(QStringLiteral("test: %1").arg(test->getName()), ranking::oneTest);
    }
}

void compareWindow::connectControls()
{
    const auto onActivated = [this](QComboBox *box, void (compareWindow::*slot)(int)) {
        connect(box, QOverload<int>::of(&QComboBox::activated), this, slot);
    };
    const auto onClicked = [this](QCheckBox *box, void (compareWindow::*slot)(bool)) {
        connect(box, &QCheckBox::clicked, this, slot);
    };
    onActivated(ui->comboBox, &compareWindow::selectionChanged);
    onActivated(ui->comboBoxCount, &compareWindow::selectionCountChanged);
    onActivated(ui->comboBoxSortBy, &compareWindow::sortByChanged);
    for (QCheckBox *box : {ui->checkBoxAndroid, ui->checkBoxWindows, ui->checkBoxLinux})
        onClicked(box, &compareWindow::osFilterChanged);
    onClicked(ui->checkBoxIPC, &compareWindow::ipcChanged);
    onClicked(ui->checkBoxMerged, &compareWindow::mergeChanged);
    connect(ui->checkBoxNameType, &QCheckBox::stateChanged, this,
            &compareWindow::nameTypeStateChanged);
    connect(ui->closeButton, &QPushButton::clicked, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
}

void compareWindow::selectionChanged(int i)
{
    updateChart(i);
}

void compareWindow::ipcChanged(bool)
{
    ipc = ui->checkBoxIPC->isChecked();
    rebuild();
}

void compareWindow::osFilterChanged(bool)
{
    rebuild();
}

void compareWindow::nameTypeStateChanged(int)
{
    rebuild();
}

void compareWindow::selectionCountChanged(int)
{
    rebuild();
}

void compareWindow::sortByChanged(int i)
{
    ui->comboBoxCount->setEnabled(i != ranking::allDevices);
    rebuild();
}

void compareWindow::mergeChanged(bool)
{
    rebuild();
}

void compareWindow::barHovered(bool status, int indx, QBarSet *set)
{
    if (!set || indx >= set->count())
        return;
    highlight(chartMaker::barIndex(*chartView->chart(), set, indx), status);
}

void compareWindow::highlight(int index, bool isHovered)
{
    if (index < 0 || index >= shown.bars.size())
        return;
    chartMaker::highlight(*chartView->chart(), index, isHovered);
    const chartBar *bar = &shown.bars.at(index);
    if (!isHovered)
        tip->leave(bar);
    else if (walker->current() == index)
        tip->enter(bar, bar->tip, chartView->placeOf(index));
    else
        tip->enter(bar, bar->tip);
}

bool compareWindow::event(QEvent *event)
{
    // Of menus without tips, which would clear the notes.
    if (event->type() == QEvent::StatusTip)
        return true;
    if (event->type() == QEvent::Gesture && dataAccess) {
        const QGesture *gesture = static_cast<QGestureEvent *>(event)->gesture(Qt::SwipeGesture);
        if (const auto *swipe = static_cast<const QSwipeGesture *>(gesture)) {
            // The chooser keeps its test; a swipe is a glance at the next one.
            const int current = ui->comboBox->currentIndex();
            const QSwipeGesture::SwipeDirection direction = swipe->horizontalDirection();
            if (direction == QSwipeGesture::Left && current - 1 >= 0)
                updateChart(current - 1);
            else if (direction == QSwipeGesture::Right && current + 1 < ui->comboBox->count())
                updateChart(current + 1);
        }
    }
    return QMainWindow::event(event);
}

void compareWindow::rebuild()
{
    updateChart(ui->comboBox->currentIndex());
}

void compareWindow::updateChart(int testIndex)
{
    const auto kind = static_cast<ranking::testKind>(ui->comboBox->itemData(testIndex).toInt());
    QString title;
    switch (kind) {
    case ranking::singleCoreTests:
        title = tr("combined (singlecore)");
        break;
    case ranking::multiCoreTests:
        title = tr("combined (multicore)");
        break;
    case ranking::allTests:
        title = tr("combined");
        break;
    case ranking::oneTest:
        // The text of the chooser, not of testIndex: they differ after a swipe, and stay different.
        title = ui->comboBox->currentText().mid(testPrefixLength);
        break;
    }
    const int osMask = (ui->checkBoxAndroid->isChecked() ? ranking::androidFlag : 0)
                       | (ui->checkBoxLinux->isChecked() ? ranking::linuxFlag : 0)
                       | (ui->checkBoxWindows->isChecked() ? ranking::windowsFlag : 0);
    buildChart(static_cast<ranking::selectionMode>(ui->comboBoxSortBy->currentIndex()),
               ui->comboBoxCount->currentText().toInt(), kind, osMask, title,
               ui->checkBoxMerged->isChecked());
}

void compareWindow::buildChart(ranking::selectionMode sortMode, int count, ranking::testKind kind,
                               int osMask, const QString &title, bool merged)
{
    chartChoice choice;
    choice.wanted.kind = kind;
    choice.wanted.mode = sortMode;
    choice.wanted.count = count;
    choice.wanted.osMask = osMask;
    choice.wanted.isMerged = merged;
    choice.wanted.isPerClock = ipc;
    choice.title = title;
    choice.labels = labelStyle(ui->checkBoxNameType->checkState());
    chartContent content = contentOf(dataAccess->getResults(), dataAccess->getTests(), choice);
    if (content.isEmpty())
        return;
    const benchResults &own = content.bars.last().machine;
    qDebug() << "Test" << own.getName() << " " << (own.isMeasured() ? "Used" : "Unused");
    shown = std::move(content);
    const qreal likelyWidth = chartView->chart()->plotArea().width();
    showChart(likelyWidth > 0 ? chartMaker::chartOf(shown, fontSize, likelyWidth)
                              : chartMaker::chartOf(shown, fontSize));
    showNotes();
}

void compareWindow::showNotes()
{
    ui->statusBar->setStanding(shown.standing);
    ui->statusBar->showMessage(shown.notes.join(QStringLiteral(". ")));
    chartView->setTable(shown);
}

void compareWindow::showChart(std::unique_ptr<QChart> chart)
{
    tip->clear();
    walker->restart(shown.bars.size());
    qRegisterMetaType<QBarSet *>("QBarSet*");
    connect(chartMaker::barsOf(*chart), &QBarSeries::hovered, this, &compareWindow::barHovered);
    // The view gives up the chart that it showed before.
    const std::unique_ptr<QChart> previous(chartView->chart());
    for (const QAbstractSeries *series : previous->series())
        series->disconnect(this); // a bar that is hovered says farewell
    chartView->showFromItsEnd(chart.release());
}
