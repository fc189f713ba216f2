// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/chartContent.h"

#include <QChartView>
#include <QMainWindow>

#include <memory>

class barTip;
class barWalker;
class benchDataAccess;
class legendScrollView;

QT_CHARTS_BEGIN_NAMESPACE
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
    void showChart(std::unique_ptr<QChart> chart);
    /// The bar at @p index is hovered, by the mouse or the keyboard, or no longer.
    void highlight(int index, bool isHovered);
    /// Says what the chart does not show.
    void showNotes();
    void nameControls();
    void addView();
    void addMenu();

    benchDataAccess *dataAccess;
    legendScrollView *chartView = nullptr;
    barTip *tip = nullptr;
    barWalker *walker = nullptr;
    chartContent shown;
    bool ipc = false;
    int fontSize;
    std::unique_ptr<Ui::compareWindow> ui;
};
