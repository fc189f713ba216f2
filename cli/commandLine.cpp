// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandLine.h"

#include "data/httpDatabase.h"
#include "engine/outcome.h"

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
    QStringLiteral("[https://]HOST[:PORT]"));

QString indented(const QStringList &names)
{
    return QStringLiteral("  ") + names.join(QStringLiteral("\n  "));
}

/// The test that @p wanted means.
std::optional<QString> matchingTest(const QString &wanted, const QStringList &testNames)
{
    const auto match = std::find_if(testNames.begin(), testNames.end(), [&](const QString &name) {
        return name.simplified() == wanted.simplified();
    });
    return match == testNames.end() ? std::nullopt : std::make_optional(*match);
}

/// Reads which tests run, and how, into @p command.
outcome<void> readTests(const QCommandLineParser &parser, const QStringList &testNames,
                        const QStringList &resolutionNames, commandLine &command)
{
    for (const QString &wanted : parser.values(testOption)) {
        const std::optional<QString> name = matchingTest(wanted, testNames);
        if (!name) {
            return failure(QStringLiteral("there is no test '%1'. The tests are:\n%2")
                               .arg(wanted, indented(testNames)));
        }
        command.wanted = commandLine::runTests;
        command.tests.append(*name);
    }
    if (parser.isSet(resolutionOption)) {
        command.resolution = parser.value(resolutionOption);
        if (!resolutionNames.contains(command.resolution)) {
            return failure(QStringLiteral("there is no resolution '%1'. The resolutions are:\n%2")
                               .arg(command.resolution, indented(resolutionNames)));
        }
        if (command.wanted == commandLine::runFull) {
            return failure(QStringLiteral("a full run always uses %1; --resolution needs --test")
                               .arg(resolutionNames.first()));
        }
    }
    if (parser.isSet(timeOption)) {
        constexpr int longest = std::numeric_limits<int>::max() / 1000;
        const std::optional<int> seconds = wholeNumber(parser.value(timeOption), 1, longest);
        if (!seconds) {
            return failure(QStringLiteral("--time takes a whole number of seconds from 1 up, "
                                          "not '%1'")
                               .arg(parser.value(timeOption)));
        }
        command.testTime = *seconds * 1000;
    }
    return {};
}

/// Reads what concerns the online database into @p command, the rest of which is complete.
outcome<void> readExchange(const QCommandLineParser &parser, commandLine &command)
{
    command.server = httpDatabase::defaultHost();
    if (parser.isSet(serverOption)) {
        command.server = parser.value(serverOption);
        if (!httpDatabase::isServer(command.server)) {
            return failure(
                QStringLiteral("--server takes HOST or HOST:PORT, or https:// and one of "
                               "both, not '%1'")
                    .arg(command.server));
        }
    }
    const QStringList names = parser.optionNames();
    command.isUpload = names.lastIndexOf(uploadOption.names().first())
                       > names.lastIndexOf(noUploadOption.names().first());
    if (!command.isUpload)
        return {};
    if (command.wanted != commandLine::runFull) {
        return failure(QStringLiteral("only the results of a full run are uploaded; --upload "
                                      "cannot go with --test"));
    }
    if (command.testTime != benchBase::standardTestTime) {
        return failure(QStringLiteral("only results of %1 seconds per test are uploaded; --upload "
                                      "cannot go with another --time")
                           .arg(benchBase::standardTestTime / 1000));
    }
    return {};
}

tl::unexpected<closingText> wrong(const QString &sentence)
{
    return tl::unexpected(usageError(consoleRunnerName(), sentence));
}

} // namespace

QString consoleRunnerName()
{
    return QStringLiteral("fennick-cli");
}

parsed<commandLine> parseCommandLine(const QStringList &arguments, const QStringList &testNames,
                                     const QStringList &resolutionNames)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Fennick, a CPU benchmark, without a window. Without options it does a full run."));
    parser.addOptions({listOption, testOption, resolutionOption, timeOption, uploadOption,
                       noUploadOption, serverOption});
    if (const auto closing = readOptions(parser, arguments, consoleRunnerName()))
        return tl::unexpected(*closing);
    if (!parser.positionalArguments().isEmpty()) {
        return wrong(
            QStringLiteral("unexpected argument '%1'").arg(parser.positionalArguments().first()));
    }
    if (parser.isSet(listOption)) {
        return tl::unexpected(
            closingText{QStringLiteral("Tests:\n%1\nResolutions:\n%2\n")
                            .arg(indented(testNames), indented(resolutionNames))});
    }
    commandLine command;
    const outcome<void> isRead =
        readTests(parser, testNames, resolutionNames, command).and_then([&] {
            return readExchange(parser, command);
        });
    if (!isRead)
        return wrong(isRead.error());
    return command;
}
