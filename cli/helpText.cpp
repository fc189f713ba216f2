// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/helpText.h"

namespace
{

constexpr int lineWidth = 79;
constexpr int firstColumn = 26;

/// @p text in lines that begin at @p column and end before lineWidth, the first one behind
/// @p heading, which gets a line of its own where it is too long.
QString entry(const QString &heading, const QString &text, int column = firstColumn)
{
    QString lines;
    QString line = heading.isEmpty() ? QString() : QStringLiteral("  ") + heading;
    if (!line.isEmpty() && line.size() > column - 2) {
        lines = line + QLatin1Char('\n');
        line.clear();
    }
    line = line.leftJustified(column);
    bool isEmpty = true;
    for (const QString &word : text.split(QLatin1Char(' '))) {
        if (!isEmpty && line.size() + 1 + word.size() > lineWidth) {
            lines += line + QLatin1Char('\n');
            line = QString(column, QLatin1Char(' '));
            isEmpty = true;
        }
        line += isEmpty ? word : QLatin1Char(' ') + word;
        isEmpty = false;
    }
    return lines + line + QLatin1Char('\n');
}

QString headingOf(const optionRow &row)
{
    const QString letter =
        row.letter == '\0' ? QString() : QStringLiteral("-%1, ").arg(QLatin1Char(row.letter));
    const QString argument =
        row.argument.isEmpty() ? QString() : QStringLiteral(" <%1>").arg(row.argument);
    return letter + QStringLiteral("--") + row.name + argument;
}

QString optionsText(const commandRow &command)
{
    QString text = QStringLiteral("\nOptions:\n");
    for (const optionRow &row : command.options)
        text += entry(headingOf(row), row.description);
    text += entry(QStringLiteral("-h, --help"), QStringLiteral("Shows this help."));
    return text + entry(QStringLiteral("-v, --version"), QStringLiteral("Shows the version."));
}

QString programHelp()
{
    const commandRow &run = commandTable().front();
    QString text =
        QStringLiteral("Usage: %1 [OPTIONS]\n       %1 COMMAND [OPTIONS]\n\n"
                       "Fennick, a CPU benchmark, without a window. Without a command it runs "
                       "all\ntests, or those that --test names.\n")
            .arg(consoleRunnerName());
    text += optionsText(run) + QStringLiteral("\nCommands, each with a --help of its own:\n");
    for (const commandRow &row : commandTable()) {
        if (!row.name.isEmpty())
            text += entry((row.name + QLatin1Char(' ') + row.arguments).trimmed(), row.summary);
    }
    text += QStringLiteral("\nExit codes:\n");
    constexpr int codeColumn = 8;
    for (const exitCodeRow &row : exitCodeTable())
        text += entry(QString::number(row.code), row.meaning, codeColumn);
    return text;
}

} // namespace

QString helpText(const commandRow &command)
{
    if (command.name.isEmpty())
        return programHelp();
    const QString usage = QStringLiteral("Usage: %1 %2 [OPTIONS] %3")
                              .arg(consoleRunnerName(), command.name, command.arguments)
                              .trimmed();
    QString text = usage + QStringLiteral("\n\n") + entry(QString(), command.summary, 0);
    if (!command.description.isEmpty())
        text += QLatin1Char('\n') + entry(QString(), command.description, 0);
    return text + optionsText(command);
}

QStringList commandNames()
{
    QStringList names;
    for (const commandRow &row : commandTable()) {
        if (!row.name.isEmpty())
            names.append(row.name);
    }
    return names;
}
