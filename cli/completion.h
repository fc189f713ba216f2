// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "cli/commandTable.h"
#include "cli/testChoice.h"

/// The shells that completionScript knows.
QStringList completionShells();

/// A script that lets @p shell complete the arguments of the console runner: it asks the program
/// itself, with the command complete, for each key.
QString completionScript(const QString &shell);

/// What can be completed with names that the table of commands does not have.
struct completionNames {
    std::vector<listedTest> tests;
    QStringList resolutions;
};

/// What the last of @p words, the arguments so far, can be, whatever it begins with: commands,
/// options, or what the option before it takes. Nothing where a file belongs, which shells know.
QStringList completionCandidates(const QStringList &words, const completionNames &names);
