// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QByteArray>
#include <QVector>

class QIODevice;
class QXmlStreamWriter;

/// At most this many bytes of one file are read. A list of all known machines takes a hundredth of
/// it; this limit and those of data/benchReader.h bound the memory and the time that a damaged or
/// hostile file can ask for.
constexpr qint64 maximumXmlSize = 16 * 1024 * 1024;

/// How the reading of a list has ended.
struct listEnd {
    enum kind {
        complete, ///< all of it has been read
        cut,      ///< it is longer than what is read of one file
        fault     ///< it is not what a list is, or its end is missing
    };

    kind how = complete;
    qint64 line = 1; ///< where reading ended, from 1
};

/// Appends the machines of an XML result list to @p machines, as far as the list makes sense.
///
/// The format is a root element of any name with one element per machine,
/// <bench machineName os cpu clock threadCount>, clock in Hz, and in it one empty element
/// <test name result> per result. Elements without attributes are ignored wherever they are, and
/// so are all other elements and a test before the first machine; otherwise missing attributes read
/// as empty or 0. @p device must be open for reading. Reading stops at the first fault; what came
/// before it is kept. To have declarations of its own, of entities or of
/// attributes, is a fault of a list, and so are more than 64 levels of nesting, more than 64
/// attributes of an element, and 128 KiB without the end of a tag, a text or a comment.
listEnd readMachines(QIODevice &device, QVector<benchResults> &machines);

/// The machines in @p xml.
QVector<benchResults> readMachines(const QByteArray &xml);

/// Writes @p machine as one element of such a list, its results ascending by name, clock and thread
/// count as whole numbers, results with six significant digits. Characters that XML cannot hold
/// are replaced.
void writeMachine(QXmlStreamWriter &xml, const benchResults &machine);

/// The same with a clock of @p hertz: the record's own clock is a float, which cannot hold every
/// whole number of hertz.
void writeMachine(QXmlStreamWriter &xml, const benchResults &machine, quint64 hertz);
