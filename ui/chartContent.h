// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

#include <QStringList>

class testBase;

/// One machine in a chart.
struct chartBar {
    QString label;
    QString tip;           ///< all about it, in two lines
    double value = 0;      ///< the height; ranking::smallestBar where there is no result
    bool isResult = false; ///< whether the value is one, and finite: another cannot be compared
    benchResults machine;
};

/// What a chart of machines shows, without a chart: all that is drawn, copied and read aloud.
struct chartContent {
    QString title;
    QString unit;           ///< "%", or one like "MPixel/s"
    QString axisTitle;      ///< the unit, and of what
    QVector<chartBar> bars; ///< the last one is this machine's
    QString standing;       ///< where this machine stands, or what it lacks
    QStringList notes;      ///< what the bars do not show

    bool isEmpty() const { return bars.isEmpty(); }
    /// Everything that is said below the chart, in lines.
    QString remarks() const;
};

/// What is asked for.
struct chartChoice {
    ranking::choices wanted;
    QString title; ///< of oneTest the name of the test
    benchResults::descriptionStyle labels = benchResults::nameDescription;
};

/// The chart of @p machines, the last of which is this one, that @p choice asks for. Empty for
/// fewer than two machines.
chartContent contentOf(const QVector<benchResults> &machines, const QVector<testBase *> &tests,
                       const chartChoice &choice);

/// The bars as lines of cells with tabs between them, under a line of headings.
QString tableOf(const chartContent &content);

/// The results of @p machine with their units, a line for each of @p tests under one about the
/// machine.
QString resultsAsText(const benchResults &machine, const QVector<testBase *> &tests);

/// The same as lines of cells with tabs between them, without the machine.
QString resultsAsTable(const benchResults &machine, const QVector<testBase *> &tests);
