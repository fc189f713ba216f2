// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <cstdio>
#include <functional>

/// The columns of the terminal behind @p stream; 0 if it is none.
int terminalWidth(std::FILE *stream);

/// A line of a terminal that is written again and again, behind what a log has left unfinished.
class liveLine
{
public:
    /// Writes to @p stream. @p width gives its columns, 0 for what is no terminal: nothing is
    /// written then. Terminals change their size, so it is asked each time.
    liveLine(std::FILE *stream, std::function<int()> width);

    bool isVisible() const { return columns() > 0; }
    /// The log has written @p text to the same terminal.
    void logged(const QString &text);
    /// Replaces what stands in the line by @p text, as much of it as there is room for.
    void show(const QString &text);
    /// Takes the text away, so that the log goes on where it was.
    void clear();

private:
    int columns() const { return width(); }
    /// What the log has written into the present line of the terminal.
    QString unfinished(int ofColumns) const;

    std::FILE *stream;
    std::function<int()> width;
    QString lastLine; ///< of the log, without an end so far
    bool isShown = false;
};
