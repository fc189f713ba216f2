// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/options.h"

#include "console/standardStreams.h"

#include <QCommandLineParser>

closingText usageError(const QString &program, const QString &sentence)
{
    return {QStringLiteral("%1: %2\n").arg(program, sentence), exitUsage};
}

std::optional<closingText> readOptions(QCommandLineParser &parser, const QStringList &arguments,
                                       const QString &program, const std::function<QString()> &help)
{
    const QCommandLineOption helpOption = parser.addHelpOption();
    const QCommandLineOption versionOption = parser.addVersionOption();
    if (!parser.parse(arguments))
        return usageError(program, parser.errorText());
    if (parser.isSet(helpOption))
        return closingText{help ? help() : parser.helpText()};
    if (parser.isSet(versionOption)) {
        return closingText{QStringLiteral("%1 %2\n").arg(program, QStringLiteral(FENNICK_VERSION))};
    }
    return std::nullopt;
}

exitCode sayInClosing(const closingText &closing)
{
    writeText(closing.text, closing.code == exitSuccess ? stdout : stderr);
    return closing.code;
}

std::optional<int> wholeNumber(const QString &text, int least, int most)
{
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    return isNumber && number >= least && number <= most ? std::make_optional(number)
                                                         : std::nullopt;
}
