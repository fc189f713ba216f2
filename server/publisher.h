// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "server/resultStore.h"

#include <QMap>

#include <tuple>

/// Makes reference lists of a list of machines and of uploads.
///
/// Uploads of one processor, operating system and thread count are one machine: the median of each
/// test's results, where 0 means that the test was not run. Its name is the processor's; the names
/// of the computers, which may be those of persons, are dropped at once. The same uploads make the
/// same lists, in whatever order they come.
class publisher
{
public:
    /// A machine needs so many uploads to be on the normal list; the BETA list takes it from one.
    static constexpr int uploadsForTheNormalList = 3;

    /// @p builtInMachines are the ones to start from. Modelled ones give way to measured ones of
    /// the same processor.
    explicit publisher(const QVector<benchResults> &builtInMachines) : builtIn(builtInMachines) {}

    /// Counts @p upload in, unless it is withdrawn, holds no results, or its processor is unknown
    /// or called an estimate.
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
