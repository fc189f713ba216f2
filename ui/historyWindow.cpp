// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/historyWindow.h"

#include "data/runComparison.h"
#include "ui/barTip.h"
#include "ui/barWalker.h"
#include "ui/chartFonts.h"
#include "ui/noteBar.h"
#include "ui/plainText.h"

#include <QBoxLayout>
#include <QChartView>
#include <QComboBox>
#include <QDateTimeAxis>
#include <QHeaderView>
#include <QLabel>
#include <QLineSeries>
#include <QPushButton>
#include <QScatterSeries>
#include <QShortcut>
#include <QTableWidget>
#include <QValueAxis>

#include <algorithm>

QT_CHARTS_USE_NAMESPACE

namespace
{

QString dateOf(const QDateTime &when)
{
    return when.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
}

QString number(double value)
{
    return QString::number(value, 'g', 5);
}

QTableWidgetItem *cellOf(const QString &text)
{
    auto *item = new QTableWidgetItem(text);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
    return item;
}

QString intervalText(const testRatio &test)
{
    if (test.isNoClearDifference())
        return historyWindow::tr("no clear difference");
    if (!test.ratioInterval)
        return {};
    return historyWindow::tr("%1 to %2")
        .arg(number(test.ratioInterval->lower), number(test.ratioInterval->upper));
}

} // namespace

historyWindow::historyWindow(QWidget *parent, runStore::listing kept, int ownFontSize)
    : QMainWindow(parent),
      fontSize(ownFontSize)
{
    for (runStore::keptRun &one : kept.runs)
        runs.push_back(std::move(one.run));
    setObjectName(QStringLiteral("historyWindow"));
    setWindowTitle(tr("history of runs"));
    // The main window's sheet, which is inherited, is for big buttons.
    setStyleSheet(
        QStringLiteral("QLabel, QTableWidget { color: black; }"
                       "QTableWidget { background-color: white; }"
                       "QHeaderView::section { color: black; background-color: #e0e0e0; }"));
    resize(700, 620);
    build();
    fillChoosers();
    showProblems(kept.problems);
    showHistory();
    showComparison();
}

void historyWindow::open(QWidget *parent, int fontSize)
{
    auto *window = new historyWindow(parent, runStore::ofUser().list(), fontSize);
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->show();
}

void historyWindow::build()
{
    auto *center = new QWidget(this);
    auto *layout = new QVBoxLayout(center);
    const auto addChooser = [&](const char *name, const QString &text, QBoxLayout *row) {
        auto *box = new QComboBox(center);
        box->setObjectName(QString::fromLatin1(name));
        auto *label = new QLabel(text, center);
        label->setBuddy(box);
        row->addWidget(label);
        row->addWidget(box, 1);
        return box;
    };
    auto *top = new QHBoxLayout;
    layout->addLayout(top);
    tests = addChooser("comboBoxTest", tr("&Test"), top);
    view = new QChartView(center);
    view->setRenderHint(QPainter::Antialiasing);
    view->setMinimumHeight(200);
    view->setFocusPolicy(Qt::StrongFocus);
    view->setFrameShape(QFrame::NoFrame);
    layout->addWidget(view, 3);
    auto *sides = new QHBoxLayout;
    layout->addLayout(sides);
    firstRun = addChooser("comboBoxFirst", tr("Run &A"), sides);
    secondRun = addChooser("comboBoxSecond", tr("Run &B"), sides);
    table = new QTableWidget(0, 5, center);
    table->setAccessibleName(tr("two runs side by side"));
    table->setHorizontalHeaderLabels(
        {tr("test"), tr("A"), tr("B"), tr("B / A"), tr("95 % interval")});
    table->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    table->verticalHeader()->hide();
    layout->addWidget(table, 2);
    mean = new QLabel(center);
    mean->setObjectName(QStringLiteral("labelMean"));
    mean->setWordWrap(true);
    layout->addWidget(mean);
    auto *close = new QPushButton(tr("close"), center);
    layout->addWidget(close);
    setCentralWidget(center);
    setStatusBar(new noteBar(this));
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    tip = new barTip(view->viewport());
    walker = new barWalker(view);
    connect(walker, &barWalker::entered, this, [this](int index) { point(index, true); });
    connect(walker, &barWalker::left, this, [this](int index) { point(index, false); });
}

historyWindow::~historyWindow()
{
    // The chart loses the focus when it goes, which is after this has gone.
    walker->disconnect(this);
}

void historyWindow::fillChoosers()
{
    tests->addItem(tr("mean of all tests"), QString());
    for (const QString &name : testNamesOf(runs))
        tests->addItem(name, name);
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const QString text = tr("%1: %2, version %3")
                                 .arg(QString::number(i + 1), dateOf(runs.at(i).started),
                                      plainText::shortened(runs.at(i).build.version, 20));
        firstRun->addItem(text);
        secondRun->addItem(text);
    }
    const int last = firstRun->count() - 1;
    firstRun->setCurrentIndex(std::max(last - 1, std::min(last, 0)));
    secondRun->setCurrentIndex(last);
    const auto chosen = QOverload<int>::of(&QComboBox::currentIndexChanged);
    connect(tests, chosen, this, [this] { showHistory(); });
    connect(firstRun, chosen, this, [this] { showComparison(); });
    connect(secondRun, chosen, this, [this] { showComparison(); });
}

void historyWindow::showProblems(const QStringList &problems)
{
    QStringList lines = problems.mid(0, 3);
    if (problems.size() > lines.size())
        lines.append(tr("and %1 more files").arg(problems.size() - lines.size()));
    if (runs.empty())
        lines.prepend(tr("No run has been kept yet: every full benchmark is."));
    statusBar()->showMessage(lines.join(QLatin1Char('\n')));
}

void historyWindow::showHistory()
{
    const QString test = tests->currentData().toString();
    points = historyOf(runs, test);
    tip->clear();
    walker->restart(static_cast<int>(points.size()));
    const std::unique_ptr<QChart> previous(view->chart());
    view->setChart(chartOf(test).release());
    view->setAccessibleName(tr("history of %1").arg(tests->currentText()));
    QStringList lines;
    for (const historyPoint &shown : points)
        lines.append(tipOf(shown));
    view->setAccessibleDescription(lines.join(QLatin1Char('\n')));
}

std::unique_ptr<QChart> historyWindow::chartOf(const QString &test)
{
    auto chart = std::make_unique<QChart>();
    auto *line = new QLineSeries;
    dots = new QScatterSeries;
    dots->setMarkerSize(9);
    dots->setColor(Qt::red);
    for (const historyPoint &shown : points) {
        const auto when = static_cast<qreal>(shown.when.toMSecsSinceEpoch());
        line->append(when, shown.value);
        dots->append(when, shown.value);
    }
    chart->addSeries(line);
    chart->addSeries(dots);
    chart->legend()->hide();
    chart->setBackgroundRoundness(0);
    chart->setMargins(QMargins(4, 4, 4, 4));
    chart->setTitleFont(chartFonts::title(fontSize));
    chart->setTitle(points.empty() ? tr("nothing to show") : tests->currentText().toHtmlEscaped());
    if (!points.empty())
        addAxes(chart.get(), test.isEmpty() ? tr("% of the first run") : unitOf(runs, test));
    connect(dots, &QScatterSeries::hovered, this, [this](const QPointF &place, bool isHovered) {
        point(dots->points().indexOf(place), isHovered);
    });
    return chart;
}

void historyWindow::addAxes(QChart *chart, const QString &unit)
{
    const QFont font = chartFonts::legend(fontSize);
    const auto [lowest, highest] = std::minmax_element(
        points.begin(), points.end(),
        [](const historyPoint &one, const historyPoint &other) { return one.value < other.value; });
    const auto [oldest, newest] = std::minmax_element(
        points.begin(), points.end(),
        [](const historyPoint &one, const historyPoint &other) { return one.when < other.when; });
    constexpr qint64 leastSpan = 60 * 60; // seconds; a single run would have none
    const qint64 edge = std::max(leastSpan, oldest->when.secsTo(newest->when)) / 20;
    auto *time = new QDateTimeAxis;
    time->setFormat(QStringLiteral("yyyy-MM-dd HH:mm"));
    time->setTickCount(4);
    time->setRange(oldest->when.addSecs(-edge), newest->when.addSecs(edge));
    time->setLabelsFont(font);
    auto *value = new QValueAxis;
    const double room = std::max((highest->value - lowest->value) / 10, highest->value / 50);
    value->setRange(std::max(0.0, lowest->value - room), highest->value + room);
    value->setTitleText(unit.toHtmlEscaped());
    value->setTitleFont(font);
    value->setLabelsFont(font);
    chart->addAxis(time, Qt::AlignBottom);
    chart->addAxis(value, Qt::AlignLeft);
    for (QAbstractSeries *series : chart->series()) {
        series->attachAxis(time);
        series->attachAxis(value);
    }
}

QString historyWindow::tipOf(const historyPoint &shown) const
{
    const QString test = tests->currentData().toString();
    return tr("%1: %2 %3\nversion %4\n%5")
        .arg(dateOf(shown.when), number(shown.value),
             test.isEmpty() ? QStringLiteral("%") : unitOf(runs, test),
             plainText::shortened(shown.version), shown.judgement);
}

void historyWindow::point(int index, bool isHovered)
{
    if (index < 0 || index >= static_cast<int>(points.size()))
        return;
    const auto place = static_cast<std::size_t>(index);
    if (!isHovered) {
        tip->leave(dots);
        return;
    }
    const QPointF at = view->chart()->mapToPosition(dots->at(index), dots);
    tip->enter(dots, tipOf(points.at(place)),
               view->viewport()->mapToGlobal(view->mapFromScene(view->chart()->mapToScene(at))));
}

void historyWindow::showComparison()
{
    table->setRowCount(0);
    mean->clear();
    const int first = firstRun->currentIndex();
    const int second = secondRun->currentIndex();
    if (first < 0 || second < 0)
        return;
    fillTable(runs.at(static_cast<std::size_t>(first)), runs.at(static_cast<std::size_t>(second)));
}

void historyWindow::fillTable(const runRecord &first, const runRecord &second)
{
    const runComparison found = compared(comparedTestsOf(first), comparedTestsOf(second));
    table->setRowCount(static_cast<int>(found.tests.size()));
    int row = 0;
    for (const testRatio &test : found.tests) {
        const QString unit = QLatin1Char(' ') + test.unit + QStringLiteral("/s");
        const QStringList cells = {test.name, number(test.first) + unit, number(test.second) + unit,
                                   QString::number(test.ratio, 'f', 3), intervalText(test)};
        for (int column = 0; column < cells.size(); ++column)
            table->setItem(row, column, cellOf(cells.at(column)));
        ++row;
    }
    QStringList lines;
    if (found.geometricMean)
        lines.append(
            tr("Geometric mean of B / A: %1").arg(QString::number(*found.geometricMean, 'f', 3)));
    const auto add = [&lines](const QStringList &names, const QString &what) {
        if (!names.isEmpty())
            lines.append(what.arg(names.join(QStringLiteral(", "))));
    };
    add(found.onlyFirst, tr("B has no result of: %1"));
    add(found.onlySecond, tr("A has no result of: %1"));
    add(found.otherResolution, tr("not the same resolution, so not compared: %1"));
    mean->setTextFormat(Qt::PlainText);
    mean->setText(lines.join(QLatin1Char('\n')));
}
