// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "server/resultStore.h"

#include <QMap>

#include <tuple>

/// Makes reference lists from a list of machines and from uploads.
///
/// Uploads of one processor, operating system and thread count make one machine: the median of each
/// test's results, where 0 means that the test was not run. Its name is the processor's; the names
/// of the computers, which may be names of persons, are dropped at once. The same uploads make the
/// same lists, in whatever order they come.
class publisher
{
public:
    /// A machine needs this many uploads to be on the normal list; one is enough for the BETA list.
    static constexpr int uploadsForTheNormalList = 3;

    /// The lists start with @p builtInMachines, but modelled ones give way to measured ones of the
    /// same processor.
    explicit publisher(const QVector<benchResults> &builtInMachines) : builtIn(builtInMachines) {}

    /// Adds @p upload, unless it is withdrawn, all its results are 0, or its processor is unknown
    /// or has the name of a modelled one.
    void add(const storedUpload &upload);

    /// The XML of the list, packed by qCompress.
    QByteArray list(bool isBeta) const;

private:
    /// Processor, operating system, threads.
    using key = std::tuple<QString, QString, int>;
    struct group {
        int uploads = 0;
        QVector<float> clocks;
        QMap<QString, QVector<float>> results;
    };

    QVector<benchResults> machines(int uploadsNeeded) const;

    QVector<benchResults> builtIn;
    QMap<key, group> groups;
};
