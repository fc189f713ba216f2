// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include "cli/commandTable.h"
#include "cli/completion.h"
#include "cli/helpText.h"
#include "cli/runOptions.h"

#include <QCommandLineParser>

#include <algorithm>

namespace
{

tl::unexpected<closingText> wrong(const QString &sentence)
{
    return tl::unexpected(usageError(consoleRunnerName(), sentence));
}

QCommandLineOption optionOf(const optionRow &row)
{
    QStringList names(row.name);
    if (row.letter != '\0')
        names.prepend(QString(QLatin1Char(row.letter)));
    return {names, row.description, row.argument};
}

/// @p arguments with a "-" behind each option whose argument is left out.
QStringList withOptionalArguments(QStringList arguments, const commandRow &command)
{
    for (int i = 0; i < arguments.size(); ++i) {
        if (arguments.at(i) == QLatin1String("--"))
            break;
        const bool isOptional =
            std::any_of(command.options.begin(), command.options.end(), [&](const optionRow &row) {
                return row.isOptional && arguments.at(i) == QStringLiteral("--") + row.name;
            });
        const QString next = arguments.value(i + 1);
        const bool isLeftOut =
            next.isEmpty() || (next.startsWith(QLatin1Char('-')) && next.size() > 1);
        if (isOptional && isLeftOut)
            arguments.insert(i + 1, QStringLiteral("-"));
    }
    return arguments;
}

parsed<request> readRun(const QCommandLineParser &parser, const std::vector<listedTest> &tests,
                        const QStringList &resolutionNames)
{
    if (parser.isSet(QStringLiteral("list")))
        return request(listRequest{parser.value(QStringLiteral("json"))});
    const outcome<runRequest> read = readRunOptions(parser, tests, resolutionNames);
    if (!read)
        return wrong(read.error());
    return request(*read);
}

parsed<request> readShow(const QCommandLineParser &parser)
{
    const outcome<outputFiles> output = readOutputFiles(parser);
    if (!output)
        return wrong(output.error());
    return request(showRequest{parser.positionalArguments().value(0), *output});
}

parsed<request> readCompare(const QCommandLineParser &parser)
{
    const QStringList runs = parser.positionalArguments();
    const compareRequest compared = {runs.value(0), runs.value(1),
                                     parser.value(QStringLiteral("with"))};
    if (parser.isSet(QStringLiteral("with")) && (runs.size() > 1 || compared.with.isEmpty()))
        return wrong(QStringLiteral("--with takes a part of a name, and stands for one of the two "
                                    "that are compared"));
    return request(compared);
}

parsed<request> readCompletion(const QCommandLineParser &parser)
{
    const QString shell = parser.positionalArguments().value(0);
    if (!completionShells().contains(shell)) {
        return wrong(QStringLiteral("completion takes one of %1, not '%2'")
                         .arg(completionShells().join(QStringLiteral(", ")), shell));
    }
    return request(completionRequest{shell});
}

/// The command that @p arguments begin with, and whether it has a name there.
const commandRow *commandOf(const QStringList &arguments)
{
    const QString first = arguments.value(1);
    return findCommand(first.startsWith(QLatin1Char('-')) ? QString() : first);
}

} // namespace

parsed<request> parseCommandLine(const QStringList &arguments, const std::vector<listedTest> &tests,
                                 const QStringList &resolutionNames)
{
    const commandRow *command = commandOf(arguments);
    if (!command) {
        return wrong(QStringLiteral("unexpected argument '%1'; the commands are %2")
                         .arg(arguments.value(1), commandNames().join(QStringLiteral(", "))));
    }
    QCommandLineParser parser;
    for (const optionRow &row : command->options)
        parser.addOption(optionOf(row));
    QStringList rest = withOptionalArguments(arguments, *command);
    if (!command->name.isEmpty())
        rest.removeAt(1);
    if (const auto closing =
            readOptions(parser, rest, consoleRunnerName(), [&] { return helpText(*command); }))
        return tl::unexpected(*closing);
    const QStringList more = parser.positionalArguments();
    if (more.size() > command->mostArguments)
        return wrong(
            QStringLiteral("unexpected argument '%1'").arg(more.at(command->mostArguments)));

    if (command->name.isEmpty())
        return readRun(parser, tests, resolutionNames);
    if (command->name == QLatin1String("show"))
        return readShow(parser);
    if (command->name == QLatin1String("compare"))
        return readCompare(parser);
    if (command->name == QLatin1String("completion"))
        return readCompletion(parser);
    if (command->name == QLatin1String("complete"))
        return request(completeRequest{more});
    if (command->name == QLatin1String("verify"))
        return request(verifyRequest{});
    if (command->name == QLatin1String("history"))
        return request(historyRequest{});
    if (command->name == QLatin1String("doctor"))
        return request(doctorRequest{});
    return request(manualRequest{});
}
