// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartMaker.h"

#include "ui/chartFonts.h"
#include "ui/plainText.h"

#include <QBarSet>
#include <QCoreApplication>
#include <QGraphicsLayout>
#include <QGraphicsScene>
#include <QGraphicsTextItem>
#include <QLegendMarker>
#include <QLineSeries>
#include <QPen>
#include <QValueAxis>

#include <algorithm>
#include <cmath>

QT_CHARTS_USE_NAMESPACE

namespace
{

/// The share of its place that a bar takes.
constexpr qreal barShare = 0.9;

/// The width of an outline of one of @p bars that share @p plotWidth.
qreal outlineWidth(qreal plotWidth, int bars)
{
    constexpr qreal wideBar = 5; // pixels; from there on a whole one is for the outline
    const qreal width = plotWidth * barShare / std::max(bars, 1);
    // In steps: each change costs every bar a new layout.
    for (const qreal step : {1.0, 0.5, 0.25}) {
        if (width / wideBar >= step)
            return step;
    }
    return 0.1;
}

QPen outlineOf(qreal plotWidth, int bars, int index)
{
    const qreal width = outlineWidth(plotWidth, bars);
    if (width >= 1)
        return QPen(Qt::black, 1);
    // What is left of this machine's bar beside its outline would be next to nothing.
    return index + 1 == bars ? QPen(Qt::red, 1) : QPen(Qt::black, width);
}

QBarSeries *createBars(const chartContent &content, qreal likelyWidth)
{
    auto *series = new QBarSeries;
    series->setBarWidth(barShare);
    QList<QBarSet *> sets;
    for (const chartBar &bar : content.bars) {
        auto *set = new QBarSet(bar.label);
        set->setBorderColor(Qt::black);
        set->setPen(outlineOf(likelyWidth, content.bars.size(), sets.size()));
        set->append(bar.value);
        sets.append(set);
    }
    sets.last()->setColor(Qt::red);
    series->append(sets);
    return series;
}

/// All bars as the values of one set.
QBarSeries *createManyBars(const chartContent &content)
{
    auto *series = new QBarSeries;
    series->setBarWidth(barShare);
    QList<qreal> values;
    values.reserve(content.bars.size());
    for (const chartBar &bar : content.bars)
        values.append(std::isfinite(bar.value) ? bar.value : 0.0); // or all others would move up
    auto *set = new QBarSet(
        QCoreApplication::translate("compareWindow", "%1 devices").arg(content.bars.size() - 1));
    set->append(values);
    set->setPen(Qt::NoPen);
    series->append(set);
    return series;
}

/// An upright line for the bar at @p index.
QLineSeries *createUpright(const QString &name, const QPen &pen)
{
    auto *line = new QLineSeries;
    line->setName(name);
    line->setPen(pen);
    return line;
}

void addManyBars(QChart *chart, const chartContent &content)
{
    constexpr qreal lineWidth = 3; // a bar may be narrower than a pixel
    const chartBar &own = content.bars.last();
    const int last = content.bars.size() - 1;
    chart->addSeries(createManyBars(content));
    auto *you = createUpright(own.label, QPen(Qt::red, lineWidth));
    if (std::isfinite(own.value))
        you->replace(QVector<QPointF>({QPointF(last, 0), QPointF(last, own.value)}));
    chart->addSeries(you);
    chart->addSeries(createUpright(QString(), QPen(Qt::black, lineWidth)));
}

/// A dashed line at @p value over a plot from @p left to @p right.
QLineSeries *createLine(qreal value, qreal left, qreal right)
{
    auto *line = new QLineSeries;
    line->setColor(Qt::black);
    line->setPen(QPen(Qt::DashLine));
    line->append(left, value);
    line->append(right, value);
    return line;
}

/// Without an axis each series has places of its own.
void addPlaces(QChart *chart, int count)
{
    auto *places = new QValueAxis;
    places->setRange(-0.5, count - 0.5);
    places->setVisible(false);
    chart->addAxis(places, Qt::AlignBottom);
    for (QAbstractSeries *series : chart->series())
        series->attachAxis(places);
}

void addAxis(QChart *chart, const QString &title, const QFont &font)
{
    auto *axis = new QValueAxis;
    axis->setTickCount(11);
    axis->setTitleText(plainText::asHtml(title));
    axis->setTitleFont(font);
    QObject::connect(chart, &QChart::plotAreaChanged, axis,
                     [axis, font](const QRectF &area) { chartFonts::fitLabels(axis, area, font); });
    chart->addAxis(axis, Qt::AlignLeft);
    for (QAbstractSeries *series : chart->series())
        series->attachAxis(axis);
}

void prepareLegend(QChart *chart, const QFont &font)
{
    QLegend *legend = chart->legend();
    const QList<QLegendMarker *> markers = legend->markers();
    for (QLegendMarker *marker : markers) { // which would read names as HTML
        const auto *line = qobject_cast<QLineSeries *>(marker->series());
        marker->setVisible(!line || !line->name().isEmpty());
        marker->setLabel(plainText::asHtml(plainText::shortened(marker->label())));
    }
    legend->setVisible(true);
    legend->setAlignment(Qt::AlignRight);
    legend->setFont(font);
}

bool isOfManyBars(const QChart &chart)
{
    return chartMaker::barsOf(chart)->count() == 1
           && chartMaker::barsOf(chart)->barSets()[0]->count() > 1;
}

QPen outlineOf(const QChart &chart, int index)
{
    return outlineOf(chart.plotArea().width(), chartMaker::barsOf(chart)->count(), index);
}

/// Follows the width of the bars.
void fitOutlines(const QChart &chart)
{
    if (isOfManyBars(chart) || chart.plotArea().isEmpty())
        return;
    const QList<QBarSet *> sets = chartMaker::barsOf(chart)->barSets();
    const QPen outline = outlineOf(chart, 0);
    if (sets.first()->pen() == outline)
        return;
    for (int i = 0; i < sets.size(); ++i)
        sets.at(i)->setPen(outlineOf(chart, i));
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

int chartMaker::barIndex(const QChart &chart, const QBarSet *set, int index)
{
    return isOfManyBars(chart) ? index
                               : barsOf(chart)->barSets().indexOf(const_cast<QBarSet *>(set));
}

QPointF chartMaker::middleOf(const QChart &chart, int index)
{
    const bool isMany = isOfManyBars(chart);
    const int count = isMany ? barsOf(chart)->barSets().first()->count() : barsOf(chart)->count();
    const QRectF plot = chart.plotArea();
    // Sets share one category, of which bars take their share; values have a category each.
    const qreal room = plot.width() * (isMany ? 1.0 : barShare);
    return {plot.center().x() + room * ((index + 0.5) / count - 0.5), plot.center().y()};
}

void chartMaker::highlight(const QChart &chart, int index, bool isHovered)
{
    constexpr int hoveredWidth = 4;
    const QList<QBarSet *> sets = barsOf(chart)->barSets();
    if (!isOfManyBars(chart)) {
        sets.at(index)->setPen(isHovered ? QPen(Qt::black, hoveredWidth) : outlineOf(chart, index));
        return;
    }
    auto *pointer = qobject_cast<QLineSeries *>(chart.series().at(2));
    pointer->clear();
    if (isHovered)
        pointer->replace(
            QVector<QPointF>({QPointF(index, 0), QPointF(index, sets.first()->at(index))}));
}

std::unique_ptr<QChart> chartMaker::chartOf(const chartContent &content, int fontSize,
                                            qreal likelyWidth)
{
    auto chart = std::make_unique<QChart>();
    const qreal own = content.bars.last().value;
    const int count = content.bars.size();
    if (count > mostSets) {
        addManyBars(chart.get(), content);
        chart->addSeries(createLine(own, -0.5, count - 0.5));
        addPlaces(chart.get(), count);
    } else {
        chart->addSeries(createBars(content, likelyWidth));
        chart->addSeries(createLine(own, 0, 1));
    }
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
