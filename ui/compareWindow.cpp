// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareWindow.h"

#include "data/benchDataAccess.h"
#include "data/rankedTests.h"
#include "engine/testBase.h"
#include "ui/barTip.h"
#include "ui/chartFonts.h"
#include "ui/compareNotes.h"
#include "ui/legendScrollView.h"
#include "ui/plainText.h"
#include "ui_compareWindow.h"

#include <QBarSeries>
#include <QBarSet>
#include <QDebug>
#include <QGestureEvent>
#include <QGraphicsLayout>
#include <QLegendMarker>
#include <QLineSeries>
#include <QValueAxis>

namespace
{

/// What stands before a test's name in the chooser.
constexpr int testPrefixLength = 6;

/// Below this height, in pixels, nothing could be told apart.
constexpr int smallestChart = 220;

const char *const descriptionProperty = "machine";

QPen outline(int width)
{
    return QPen(Qt::black, width);
}

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

/// The text of a bar's tool tip.
QString describeBar(const benchResults &machine, float value, const QString &unit)
{
    const QString result =
        value == ranking::smallestBar
            ? compareWindow::tr("no result")
            : QStringLiteral("%1 %2").arg(QString::number(static_cast<double>(value)), unit);
    return QStringLiteral("%1\n%2: %3")
        .arg(plainText::shortened(machine.describe(benchResults::fullDescription)),
             plainText::shortened(machine.getCpu()), result);
}

QString unitOf(const QVector<testBase *> &tests, const QString &testName)
{
    for (const testBase *test : tests) {
        if (test->getName() == testName)
            return test->getUnit();
    }
    return {};
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
    chartView = new legendScrollView(this);
    chartView->setRenderHint(QPainter::Antialiasing);
    chartView->setMinimumHeight(smallestChart);
    ui->gridLayout->addWidget(chartView);
    tip = new barTip(chartView->viewport());
    connectControls();
    updateChart(0);
}

compareWindow::~compareWindow() = default;

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
    constexpr int hoveredWidth = 4;
    set->setPen(outline(status ? hoveredWidth : 1));
    if (status)
        tip->enter(set, set->property(descriptionProperty).toString());
    else
        tip->leave(set);
}

bool compareWindow::event(QEvent *event)
{
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
    ranking::choices wanted;
    wanted.kind = kind;
    wanted.mode = sortMode;
    wanted.count = count;
    wanted.osMask = osMask;
    wanted.isMerged = merged;
    wanted.isPerClock = ipc;
    const QVector<ranking::rankedTest> tests = rankedTestsOf(dataAccess->getTests());
    const QVector<benchResults> machines =
        ranking::rankedMachines(dataAccess->getResults(), tests, wanted);
    if (machines.isEmpty())
        return;
    const benchResults &own = machines.last();
    qDebug() << "Test" << own.getName() << " " << (own.isMeasured() ? "Used" : "Unused");

    // Per clock are the scores only: the bars of one test, and its value here, are as measured.
    const auto youValue = static_cast<double>(ranking::barValue(own, kind, title));
    QString fullTitle = title;
    if (kind == ranking::oneTest && own.isMeasured()) {
        fullTitle += QStringLiteral(" [you: %1 %2]")
                         .arg(QString::number(youValue), unitOf(dataAccess->getTests(), title));
    }
    if (ipc)
        fullTitle += tr(" (per Clock)");
    showChart(createChart(createBars(machines, kind, title), youValue, fullTitle));
    showNotes(machines, ranking::gapsOf(machines, tests, wanted));
}

void compareWindow::showNotes(const QVector<benchResults> &machines, const ranking::gaps &found)
{
    QStringList notes = {compareNotes::onGaps(found, machines.last().isMeasured(), ipc),
                         compareNotes::onEstimates(machines)};
    notes.removeAll({});
    ui->statusBar->showMessage(notes.join(QStringLiteral(". ")));
}

QBarSeries *compareWindow::createBars(const QVector<benchResults> &machines, ranking::testKind kind,
                                      const QString &testName)
{
    auto *series = new QBarSeries;
    series->setBarWidth(0.9);
    const auto style = labelStyle(ui->checkBoxNameType->checkState());
    const QString unit = kind == ranking::oneTest
                             ? unitOf(dataAccess->getTests(), testName) + QStringLiteral("/s")
                             : QStringLiteral("%");
    for (const benchResults &machine : machines) {
        const bool isOwn = &machine == &machines.last();
        const float value = ranking::barValue(machine, kind, testName);
        auto *bar = new QBarSet((isOwn ? tr("[you] ") : QString()) + machine.describe(style));
        bar->setBorderColor(Qt::black);
        bar->setPen(outline(1));
        bar->append(static_cast<double>(value));
        if (isOwn)
            bar->setColor(Qt::red);
        bar->setProperty(descriptionProperty, describeBar(machine, value, unit));
        series->append(bar);
    }
    qRegisterMetaType<QBarSet *>("QBarSet*");
    connect(series, &QBarSeries::hovered, this, &compareWindow::barHovered);
    return series;
}

QChart *compareWindow::createChart(QBarSeries *barSeries, qreal youValue,
                                   const QString &title) const
{
    auto *chart = new QChart;
    auto *line = new QLineSeries;
    line->setColor(Qt::black);
    line->setPen(QPen(Qt::DashLine));
    line->append(0.0, youValue);
    line->append(1.0, youValue);
    chart->addSeries(barSeries);
    chart->addSeries(line);
    chart->setTitle(title);

    const QFont font = chartFonts::legend(fontSize);
    auto *axis = new QValueAxis;
    axis->setTickCount(11);
    connect(chart, &QChart::plotAreaChanged, axis,
            [axis, font](const QRectF &area) { chartFonts::fitLabels(axis, area, font); });
    chart->addAxis(axis, Qt::AlignLeft);
    barSeries->attachAxis(axis);
    line->attachAxis(axis);

    QLegend *legend = chart->legend();
    for (QLegendMarker *marker : legend->markers(barSeries)) // which would read names as HTML
        marker->setLabel(plainText::asHtml(plainText::shortened(marker->label())));
    legend->markers().last()->setVisible(false);
    legend->setVisible(true);
    legend->setAlignment(Qt::AlignRight);
    legend->setFont(font);
    chart->setBackgroundRoundness(0);
    // The bars need the room, above all in a small window.
    chart->setMargins(QMargins(4, 4, 4, 4));
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    return chart;
}

void compareWindow::showChart(QChart *chart)
{
    tip->clear();
    // The view gives up the chart that it showed before.
    const std::unique_ptr<QChart> previous(chartView->chart());
    for (const QAbstractSeries *series : previous->series())
        series->disconnect(this); // a bar that is hovered says farewell
    chartView->setChart(chart);
}
