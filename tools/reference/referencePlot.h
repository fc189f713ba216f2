// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "tools/reference/referenceTables.h"

#include <QImage>
#include <QVector>

namespace reference
{

/// Processor cores that follow each other, oldest first. A faster successor is what one expects.
struct coreFamily {
    const char *name;
    QVector<QString> cores;
};

/// The cores of the tables but for those that differ from another one by their memory alone. A core
/// whose forerunner belongs to another family (Rocket Lake is Ice Lake's design, a year later, in
/// an older process) has its own.
const QVector<coreFamily> &coreFamilies();

/// Modelled throughput of one core per clock by the year of the core, for three tests. It needs a
/// QGuiApplication for the letters.
QImage generationPlot(const tables &facts, const QVector<double> &factors);

} // namespace reference
