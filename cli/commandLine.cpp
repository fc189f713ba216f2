// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include "data/httpDatabase.h"

#include <QCommandLineParser>

#include <algorithm>
#include <limits>

namespace
{

const QCommandLineOption listOption(QStringLiteral("list"),
                                    QStringLiteral("List the tests and the resolutions."));
const QCommandLineOption
    testOption(QStringLiteral("test"),
               QStringLiteral("Run this test alone; may be given several times."),
               QStringLiteral("NAME"));
const QCommandLineOption resolutionOption(
    QStringLiteral("resolution"),
    QStringLiteral("Virtual resolution of the tests named by --test; the first one listed is the "
                   "standard."),
    QStringLiteral("WxH"));
const QCommandLineOption
    timeOption(QStringLiteral("time"),
               QStringLiteral("Whole seconds that each test runs; 8 if absent."),
               QStringLiteral("SECONDS"));
const QCommandLineOption
    uploadOption(QStringLiteral("upload"),
                 QStringLiteral("Upload the results of a full run to the online database."));
const QCommandLineOption
    noUploadOption(QStringLiteral("no-upload"),
                   QStringLiteral("Keep them on this machine, as if --upload was absent. The later "
                                  "one of the two counts."));
const QCommandLineOption serverOption(
    QStringLiteral("server"),
    QStringLiteral("The online database; %1 if absent.").arg(httpDatabase::defaultHost()),
    QStringLiteral("HOST[:PORT]"));

commandLine withMessage(commandLine::action action, const QString &message)
{
    commandLine result;
    result.wanted = action;
    result.message = message;
    return result;
}

commandLine errorOf(const QString &message)
{
    return withMessage(commandLine::showError, QStringLiteral("fennick-cli: %1\n").arg(message));
}

QString indented(const QStringList &names)
{
    return QStringLiteral("  ") + names.join(QStringLiteral("\n  "));
}

/// The test that @p wanted means, or an empty text.
QString matchingTest(const QString &wanted, const QStringList &testNames)
{
    const auto match = std::find_if(testNames.begin(), testNames.end(), [&](const QString &name) {
        return name.simplified() == wanted.simplified();
    });
    return match == testNames.end() ? QString() : *match;
}

/// Milliseconds, or 0 if @p text is not a whole number of seconds from 1 up.
int testTimeOf(const QString &text)
{
    constexpr int longest = std::numeric_limits<int>::max() / 1000;
    bool isNumber = false;
    const int seconds = text.toInt(&isNumber);
    return isNumber && seconds >= 1 && seconds <= longest ? seconds * 1000 : 0;
}

/// Reads what concerns the online database into @p command, the rest of which is complete. A
/// sentence that says what is wrong, or an empty text.
QString readExchange(const QCommandLineParser &parser, commandLine &command)
{
    command.server = httpDatabase::defaultHost();
    if (parser.isSet(serverOption)) {
        command.server = parser.value(serverOption);
        if (!httpDatabase::isHost(command.server))
            return QStringLiteral("--server takes HOST or HOST:PORT, not '%1'").arg(command.server);
    }
    const QStringList names = parser.optionNames();
    command.isUpload = names.lastIndexOf(uploadOption.names().first())
                       > names.lastIndexOf(noUploadOption.names().first());
    if (!command.isUpload)
        return {};
    if (command.wanted != commandLine::runFull)
        return QStringLiteral("only the results of a full run are uploaded; --upload cannot go "
                              "with --test");
    if (command.testTime != benchBase::standardTestTime) {
        return QStringLiteral("only results of %1 seconds per test are uploaded; --upload cannot "
                              "go with another --time")
            .arg(benchBase::standardTestTime / 1000);
    }
    return {};
}

commandLine readRun(const QCommandLineParser &parser, const QStringList &testNames,
                    const QStringList &resolutionNames)
{
    commandLine result;
    for (const QString &wanted : parser.values(testOption)) {
        const QString name = matchingTest(wanted, testNames);
        if (name.isEmpty()) {
            return errorOf(QStringLiteral("there is no test '%1'. The tests are:\n%2")
                               .arg(wanted, indented(testNames)));
        }
        result.wanted = commandLine::runTests;
        result.tests.append(name);
    }
    if (parser.isSet(resolutionOption)) {
        result.resolution = parser.value(resolutionOption);
        if (!resolutionNames.contains(result.resolution)) {
            return errorOf(QStringLiteral("there is no resolution '%1'. The resolutions are:\n%2")
                               .arg(result.resolution, indented(resolutionNames)));
        }
        if (result.wanted == commandLine::runFull) {
            return errorOf(QStringLiteral("a full run always uses %1; --resolution needs --test")
                               .arg(resolutionNames.first()));
        }
    }
    if (parser.isSet(timeOption)) {
        result.testTime = testTimeOf(parser.value(timeOption));
        if (result.testTime == 0) {
            return errorOf(QStringLiteral("--time takes a whole number of seconds from 1 up, "
                                          "not '%1'")
                               .arg(parser.value(timeOption)));
        }
    }
    const QString problem = readExchange(parser, result);
    return problem.isEmpty() ? result : errorOf(problem);
}

} // namespace

commandLine parseCommandLine(const QStringList &arguments, const QStringList &testNames,
                             const QStringList &resolutionNames)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Fennick, a CPU benchmark, without a window. Without options it does a full run."));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions({listOption, testOption, resolutionOption, timeOption, uploadOption,
                       noUploadOption, serverOption});

    if (!parser.parse(arguments))
        return errorOf(parser.errorText());
    if (parser.isSet(help))
        return withMessage(commandLine::showText, parser.helpText());
    if (parser.isSet(version)) {
        return withMessage(commandLine::showText,
                           QStringLiteral("fennick-cli %1\n").arg(QStringLiteral(FENNICK_VERSION)));
    }
    if (!parser.positionalArguments().isEmpty()) {
        return errorOf(
            QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().first()));
    }
    if (parser.isSet(listOption)) {
        return withMessage(commandLine::showText,
                           QStringLiteral("Tests:\n%1\nResolutions:\n%2\n")
                               .arg(indented(testNames), indented(resolutionNames)));
    }
    return readRun(parser, testNames, resolutionNames);
}
