// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QVector>

/// One x86-64 instruction as objdump prints it (AT&T syntax).
struct instruction {
    quint64 address;
    QString mnemonic;
    /// With the name of a relocated symbol, such as a called function, at its end.
    QString operands;
};

using instructions = QVector<instruction>;

struct machineFunction {
    QString name;
    instructions code;
};

/// All functions of an object file; empty if it cannot be read.
QVector<machineFunction> disassemble(const QString &objectFile);

/// The loops of a function that contain no other loop: natural loops of its control flow, wherever
/// the compiler has put their parts.
QVector<instructions> innermostLoops(const machineFunction &function);

/// How many instructions have a mnemonic that matches the regular expression as a whole.
int countMnemonics(const instructions &code, const QString &expression);
