// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "console/exitCode.h"

#include <QString>
#include <QStringList>

#include <tl/expected.hpp>

#include <functional>
#include <optional>

class QCommandLineParser;

/// What a program says instead of doing something: its help or version, or what is wrong with its
/// arguments.
struct closingText {
    QString text;
    exitCode code = exitSuccess; ///< other than success, the text goes to standard error
};

/// What a command line asks for: a command, or a text.
template <typename Command> using parsed = tl::expected<Command, closingText>;

/// What @p program says about arguments that make no sense, in one @p sentence.
closingText usageError(const QString &program, const QString &sentence);

/// Reads @p arguments, the program's own name first, with @p parser, which gets --help and
/// --version besides its own options. The text with which @p program ends, if they ask for one; the
/// help is the parser's own without @p help.
std::optional<closingText> readOptions(QCommandLineParser &parser, const QStringList &arguments,
                                       const QString &program,
                                       const std::function<QString()> &help = nullptr);

/// Writes @p closing to where it belongs. The program's exit code.
exitCode sayInClosing(const closingText &closing);

/// @p text as a whole number from @p least to @p most.
std::optional<int> wholeNumber(const QString &text, int least, int most);
