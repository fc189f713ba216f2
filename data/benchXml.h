// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/benchResults.h"

#include <QByteArray>
#include <QVector>

class QIODevice;
class QXmlStreamWriter;

/// At most this many bytes of one file are read. A list of all known machines takes a hundredth of
/// it; the limit bounds the memory that a damaged or hostile file can ask for.
constexpr qint64 maximumXmlSize = 16 * 1024 * 1024;

/// Appends the machines of an XML result list to @p machines.
///
/// The format is a root element of any name with one element per machine,
/// <bench machineName os cpu clock threadCount>, clock in Hz, and in it one empty element
/// <test name result> per result. Missing attributes read as empty or 0; other elements, and a test
/// before the first machine, are ignored. @p device must be open for reading. Reading stops at the
/// first fault; what came before it is kept.
void readMachines(QIODevice &device, QVector<benchResults> &machines);

/// The machines in @p xml.
QVector<benchResults> readMachines(const QByteArray &xml);

/// Writes @p machine as one element of such a list, its results ascending by name, clock and thread
/// count as whole numbers, results with six significant digits. Characters that XML cannot hold
/// are replaced.
void writeMachine(QXmlStreamWriter &xml, const benchResults &machine);

/// The same with a clock of @p hertz: the record's own clock is a float, which cannot hold every
/// whole number of hertz.
void writeMachine(QXmlStreamWriter &xml, const benchResults &machine, quint64 hertz);
