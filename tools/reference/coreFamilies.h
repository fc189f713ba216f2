// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVector>

namespace reference
{

/// A line of processor cores, oldest first. A successor is expected to be faster per clock.
struct coreFamily {
    const char *name;
    QVector<QString> cores;
};

/// Every core of the tables, except those that differ from a listed one only in memory bandwidth. A
/// core derived from another family starts a family of its own with its predecessor: Rocket Lake is
/// the Ice Lake design on an older process, two years later.
const QVector<coreFamily> &coreFamilies();

} // namespace reference
