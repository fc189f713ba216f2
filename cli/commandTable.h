// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

#include <QString>
#include <QStringList>

#include <vector>

/// What a shell can complete an argument with.
enum class completes { nothing, tests, resolutions, files, runs, shells };

/// One option of a command.
struct optionRow {
    QString name = {};        ///< the long one, without dashes
    char letter = '\0';       ///< the short one, if there is one
    QString argument = {};    ///< what its argument is called; empty for one without
    QString description = {}; ///< a sentence or two
    completes with = completes::nothing;
    bool isOptional = false; ///< where the argument is left out, it is "-"
};

/// One command of the console runner.
struct commandRow {
    QString name = {};      ///< empty for a run, which needs no name
    QString arguments = {}; ///< as usage shows them, such as "[A] [B]"
    int mostArguments = 0;
    QString summary = {};     ///< one line, as a list of commands shows it
    QString description = {}; ///< for the page about the command; empty if the summary says it all
    std::vector<optionRow> options = {};
    completes with = completes::nothing;
};

/// All commands, the run first. Help, manual page, completions and the reading of arguments are
/// made of this table.
const std::vector<commandRow> &commandTable();

/// The row of command @p name, or null.
const commandRow *findCommand(const QString &name);

/// What an exit code of the console runner means.
struct exitCodeRow {
    exitCode code;
    QString meaning;
};
const std::vector<exitCodeRow> &exitCodeTable();

/// The console runner's name, as its messages begin with it.
QString consoleRunnerName();
