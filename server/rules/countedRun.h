// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <optional>

/// A whole run of a machine in a form of which some hundred thousand are judged in a second.
struct countedRun {
    qint64 received = 0; ///< milliseconds since 1970
    QByteArray source;   ///< a token of where it came from; empty if that is not known
    QString processor;
    QString os;
    int threads = 0;
    float clock = 0;
    QVector<float> results; ///< in the order of wholeRunTests
};

/// The names of the tests of a full run, in their order.
const QStringList &wholeRunTests();

/// The run of @p machine; nothing if it is not a whole one.
std::optional<countedRun> countedRunOf(const benchResults &machine, qint64 received,
                                       const QByteArray &source);

/// The run as bytes, for what can be made again from the upload, and back. The bytes can be read
/// while packingName is the same.
QByteArray packedRun(const countedRun &run);
countedRun unpackedRun(const QByteArray &packed);
/// Changes whenever the form does, also with the tests of a full run.
QString packingName();
