// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QByteArray>
#include <QString>

/// The longest name of a machine or a processor.
constexpr int maximumNameLength = 128;

/// What became of an upload.
struct checkedUpload {
    bool isAccepted() const { return reason.isEmpty(); }

    benchResults machine;
    QString reason; ///< why it was refused, for the person who sent it; else empty
    /// Whether it could be read at all, and was refused for what it says.
    bool isReadable = false;
};

/// Reads the XML of one machine's results. Unlike a list of machines, which is read as far as it
/// makes sense, all of an upload must be right: one machine, known tests, each once, and values
/// that a machine can have. A document type, and so any entity of its own, is refused.
checkedUpload checkUpload(const QByteArray &xml);

/// Whether a machine that was read elsewhere may stand in the database; else why not.
QString faultOf(const benchResults &machine);

/// The one form in which equal results are equal bytes.
QByteArray canonicalXml(const benchResults &machine);

/// Whether no test has a result other than 0.
bool isAllZero(const benchResults &machine);
