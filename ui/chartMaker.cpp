// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartMaker.h"

#include "ui/chartFonts.h"
#include "ui/plainText.h"

#include <QBarSet>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPen>
#include <QValueAxis>

#include <algorithm>

QT_CHARTS_USE_NAMESPACE

namespace
{

/// The share of its place that a bar takes.
constexpr qreal barShare = 0.9;

/// The width of an outline on a chart whose bars have the room @p plotArea.
qreal outlineWidth(const QRectF &plotArea, int bars)
{
    constexpr qreal wideBar = 5; // pixels; from there on a whole one is for the outline
    const qreal width = plotArea.width() * barShare / std::max(bars, 1);
    return std::clamp(width / wideBar, 0.05, 1.0);
}

QBarSeries *createBars(const chartContent &content)
{
    auto *series = new QBarSeries;
    series->setBarWidth(barShare);
    QList<QBarSet *> sets;
    for (const chartBar &bar : content.bars) {
        auto *set = new QBarSet(bar.label);
        set->setBorderColor(Qt::black);
        set->setPen(QPen(Qt::black, 1));
        set->append(bar.value);
        sets.append(set);
    }
    sets.last()->setColor(Qt::red);
    series->append(sets);
    return series;
}

QLineSeries *createLine(qreal value)
{
    auto *line = new QLineSeries;
    line->setColor(Qt::black);
    line->setPen(QPen(Qt::DashLine));
    line->append(0.0, value);
    line->append(1.0, value);
    return line;
}

void addAxis(QChart *chart, const QString &title, const QFont &font)
{
    auto *axis = new QValueAxis;
    axis->setTickCount(11);
    axis->setTitleText(plainText::asHtml(title));
    axis->setTitleFont(font);
    QObject::connect(chart, &QChart::plotAreaChanged, axis, [axis, font](const QRectF &area) {
        chartFonts::fitLabels(axis, area, font);
    });
    chart->addAxis(axis, Qt::AlignLeft);
    for (QAbstractSeries *series : chart->series())
        series->attachAxis(axis);
}

void prepareLegend(QChart *chart, const QFont &font)
{
    QLegend *legend = chart->legend();
    for (QLegendMarker *marker : legend->markers(chart->series().first())) // would read HTML
        marker->setLabel(plainText::asHtml(plainText::shortened(marker->label())));
    legend->markers().last()->setVisible(false);
    legend->setVisible(true);
    legend->setAlignment(Qt::AlignRight);
    legend->setFont(font);
}

/// Follows the width of the bars.
void fitOutlines(const QChart &chart)
{
    const QList<QBarSet *> sets = chartMaker::barsOf(chart)->barSets();
    const QPen outline = chartMaker::outlineOf(chart, 0);
    if (sets.first()->pen() == outline)
        return;
    for (int i = 0; i < sets.size(); ++i)
        sets.at(i)->setPen(chartMaker::outlineOf(chart, i));
}

} // namespace

QBarSeries *chartMaker::barsOf(const QChart &chart)
{
    return qobject_cast<QBarSeries *>(chart.series().value(0));
}

QVector<QRectF> chartMaker::legendNames(const QChart &chart)
{
    QVector<QRectF> places;
    const QList<QGraphicsItem *> items = chart.scene()->items();
    for (const QGraphicsItem *item : items) {
        const auto *name = dynamic_cast<const QGraphicsTextItem *>(item);
        // The entry of the line is there, but hidden.
        if (name && name->isVisible() && chart.legend()->isAncestorOf(name))
            places.append(name->sceneBoundingRect());
    }
    return places;
}

QPen chartMaker::outlineOf(const QChart &chart, int index)
{
    const int count = barsOf(chart)->count();
    const qreal width = outlineWidth(chart.plotArea(), count);
    if (width >= 1)
        return QPen(Qt::black, 1);
    // What is left of this machine's bar beside its outline would be next to nothing.
    return index + 1 == count ? QPen(Qt::red, 1) : QPen(Qt::black, width);
}

std::unique_ptr<QChart> chartMaker::chartOf(const chartContent &content, int fontSize)
{
    auto chart = std::make_unique<QChart>();
    chart->addSeries(createBars(content));
    chart->addSeries(createLine(content.bars.last().value));
    chart->setTitle(content.title);
    chart->setTitleFont(chartFonts::title(fontSize));
    addAxis(chart.get(), content.axisTitle, chartFonts::legend(fontSize));
    prepareLegend(chart.get(), chartFonts::legend(fontSize));
    chart->setBackgroundRoundness(0);
    chart->setBackgroundBrush(Qt::white);
    // The bars need the room, above all in a small window.
    chart->setMargins(QMargins(4, 4, 4, 4));
    chart->layout()->setContentsMargins(0, 0, 0, 0);
    QObject::connect(chart.get(), &QChart::plotAreaChanged, chart.get(),
                     [shown = chart.get()] { fitOutlines(*shown); });
    return chart;
}
