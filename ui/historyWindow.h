// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runHistory.h"
#include "data/runStore.h"

#include <QChart>
#include <QMainWindow>

#include <memory>

class barTip;
class barWalker;
class QComboBox;
class QLabel;
class QTableWidget;

QT_CHARTS_BEGIN_NAMESPACE
class QChartView;
class QScatterSeries;
QT_CHARTS_END_NAMESPACE

/// The runs that are kept, as a chart over time, and two of them side by side.
class historyWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// Shows @p kept as it was read; @p fontSize of the chart in points.
    historyWindow(QWidget *parent, runStore::listing kept, int fontSize);
    ~historyWindow() override;

    /// Opens one of this user's runs for @p parent, which owns it; it ends when it is closed.
    static void open(QWidget *parent, int fontSize);

private:
    void build();
    void fillChoosers();
    void showProblems(const QStringList &problems);
    void showHistory();
    void showComparison();
    std::unique_ptr<QtCharts::QChart> chartOf(const QString &test);
    void addAxes(QtCharts::QChart *chart, const QString &unit);
    void point(int index, bool isHovered);
    QString tipOf(const historyPoint &shown) const;
    void fillTable(const runRecord &first, const runRecord &second);

    std::vector<runRecord> runs;
    int fontSize;
    std::vector<historyPoint> points;
    QtCharts::QChartView *view = nullptr;
    QtCharts::QScatterSeries *dots = nullptr;
    barTip *tip = nullptr;
    barWalker *walker = nullptr;
    QComboBox *tests = nullptr;
    QComboBox *firstRun = nullptr;
    QComboBox *secondRun = nullptr;
    QTableWidget *table = nullptr;
    QLabel *mean = nullptr;
};
