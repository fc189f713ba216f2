// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

#include <QChartView>
#include <QMainWindow>

#include <memory>

class barTip;
class benchDataAccess;

QT_CHARTS_BEGIN_NAMESPACE
class QBarSeries;
class QBarSet;
QT_CHARTS_END_NAMESPACE

// Signals and slots are matched by the written names of their types.
QT_CHARTS_USE_NAMESPACE

namespace Ui
{
class compareWindow;
}

/// Ranks this machine among the others in a bar chart.
///
/// Every change of a control builds the chart anew from the machines as they are then; the ranking
/// itself is that of data/ranking.h.
class compareWindow : public QMainWindow
{
    Q_OBJECT

public:
    /// @p machineData is not owned and must outlive the window; without it there is nothing to
    /// choose and no chart. @p showIpcOption offers scores per clock. @p legendFontSize in points.
    compareWindow(QWidget *parent, benchDataAccess *machineData, bool showIpcOption,
                  int legendFontSize);
    ~compareWindow() override;

    /// A swipe shows the neighbouring test.
    bool event(QEvent *event) override;

public slots:
    void selectionChanged(int i);
    void ipcChanged(bool checked);
    void osFilterChanged(bool checked);
    void nameTypeStateChanged(int i);
    void selectionCountChanged(int i);
    void sortByChanged(int i);
    void barHovered(bool status, int indx, QBarSet *set);
    void mergeChanged(bool checked);

private:
    void fillChoosers();
    void fillTests(bool showIpcOption);
    void connectControls();
    void rebuild();
    void updateChart(int testIndex);
    void buildChart(ranking::selectionMode sortMode, int count, ranking::testKind kind, int osMask,
                    const QString &title, bool merged);
    /// A bar for each of @p machines, the last one, this machine's, in red.
    QBarSeries *createBars(const QVector<benchResults> &machines, ranking::testKind kind,
                           const QString &testName);
    /// A chart of @p barSeries with a dashed line at @p youValue. Takes over the series.
    QChart *createChart(QBarSeries *barSeries, qreal youValue, const QString &title) const;
    void showChart(QChart *chart);
    /// Says what the chart of @p machines does not show.
    void showNotes(const QVector<benchResults> &machines, const ranking::gaps &found);

    benchDataAccess *dataAccess;
    QChartView *chartView = nullptr;
    barTip *tip = nullptr;
    bool ipc = false;
    int fontSize;
    std::unique_ptr<Ui::compareWindow> ui;
};
