// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"
#include "engine/outcome.h"

#include <QByteArray>
#include <QString>

/// The longest name of a machine or a processor.
constexpr int maximumNameLength = 128;

/// Why an upload was refused.
struct uploadRefusal {
    QString reason; ///< for the person who sent it
    /// The same in a few fixed words for the log, which must hold nothing of what was sent.
    const char *kind = "";
    /// Whether it could be read at all, and was refused for what it says.
    bool isReadable = false;
};

/// The machine in the XML of an upload. Unlike a list of machines, which is read as far as it makes
/// sense, all of an upload must be right: one machine, known tests, each once, a processor's name
/// that can be published, and values that a machine can have. A document type, and so any entity of
/// its own, is refused.
tl::expected<benchResults, uploadRefusal> checkUpload(const QByteArray &xml);

/// Whether a machine, from wherever it was read, may stand in the database; else why not. Its
/// processor's name may be one that is not published: older databases have some.
outcome<void> checkMachine(const benchResults &machine);

/// The one form in which equal results are equal bytes.
QByteArray canonicalXml(const benchResults &machine);

/// Whether no test has a result other than 0.
bool isAllZero(const benchResults &machine);
