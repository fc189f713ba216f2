// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QVector>

/// A machine that uploads have made, and what decides whether there is room for it.
struct listCandidate {
    benchResults machine;
    int sources = 0;
    qint64 first = 0; ///< when the oldest of its uploads was received
};

/// A list that every program can load.
struct boundedList {
    /// At most so many machines; a chart of all of them is hardly readable with 167.
    static constexpr int mostMachines = 2'000;
    /// At most so many bytes of XML, a quarter of what the programs read. Unpacked, because that is
    /// what they hold and parse: packed, repetition makes the worst list small.
    static constexpr qint64 mostBytes = 4 * 1024 * 1024;

    QVector<benchResults> machines; ///< the built-in ones first, both in the order given
    QVector<benchResults> leftOut;  ///< those for which there was no room
};

/// Makes a list of @p candidates and of what stays of @p builtIn: a modelled machine gives way to a
/// candidate with its processor, operating system and threads. All others of the built-in list
/// stay, however many candidates there are. Of those, the ones with most sources stay first, then
/// the ones that were seen first: whoever floods a list cannot drive out what was there before.
boundedList boundedListOf(const QVector<benchResults> &builtIn,
                          const QVector<listCandidate> &candidates);

/// The list as XML.
QByteArray listXml(const QVector<benchResults> &machines);
