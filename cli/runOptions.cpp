// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/runOptions.h"

#include "console/options.h"
#include "data/httpDatabase.h"

#include <QCommandLineParser>

#include <limits>

namespace
{

constexpr int longestTime = std::numeric_limits<int>::max() / 1000;
constexpr int mostThreads = 4096;
constexpr int mostRepetitions = 1000;

/// The whole number of option @p name from 1 to @p most, if it is there.
outcome<std::optional<int>> numberOf(const QCommandLineParser &parser, const QString &name,
                                     int most, const QString &unit)
{
    if (!parser.isSet(name))
        return std::optional<int>();
    const std::optional<int> number = wholeNumber(parser.value(name), 1, most);
    if (!number) {
        return failure(QStringLiteral("--%1 takes a whole number%2 from 1 up, not '%3'")
                           .arg(name, unit, parser.value(name)));
    }
    return number;
}

outcome<void> readTests(const QCommandLineParser &parser, const std::vector<listedTest> &tests,
                        const QStringList &resolutionNames, runRequest &run)
{
    for (const QString &wanted : parser.values(QStringLiteral("test"))) {
        const outcome<QStringList> names = chosenTests(wanted, tests);
        if (!names)
            return failure(names.error());
        run.wanted = runRequest::namedTests;
        run.tests += *names;
    }
    if (!parser.isSet(QStringLiteral("resolution")))
        return {};
    run.resolution = parser.value(QStringLiteral("resolution"));
    if (!resolutionNames.contains(run.resolution)) {
        return failure(QStringLiteral("there is no resolution '%1'. The resolutions are:\n  %2")
                           .arg(run.resolution, resolutionNames.join(QStringLiteral("\n  "))));
    }
    if (run.wanted == runRequest::fullRun) {
        return failure(QStringLiteral("a full run always uses %1; --resolution needs --test")
                           .arg(resolutionNames.first()));
    }
    return {};
}

outcome<void> readNumbers(const QCommandLineParser &parser, runRequest &run)
{
    struct number {
        const char *name;
        int most;
        const char *unit;
        void (*keep)(runRequest &, int);
    };
    static const number numbers[] = {
        {"time", longestTime, " of seconds", [](runRequest &r, int n) { r.testTime = n * 1000; }},
        {"repeat", mostRepetitions, "", [](runRequest &r, int n) { r.repetitions = n; }},
        {"warmup", longestTime, " of seconds", [](runRequest &r, int n) { r.warmUpSeconds = n; }},
        {"wait-idle", longestTime, " of seconds", [](runRequest &r, int n) { r.idleSeconds = n; }},
        {"threads", mostThreads, "", [](runRequest &r, int n) { r.threads = n; }},
    };
    for (const number &one : numbers) {
        const auto value =
            numberOf(parser, QLatin1String(one.name), one.most, QLatin1String(one.unit));
        if (!value)
            return failure(value.error());
        if (*value)
            one.keep(run, **value);
    }
    return {};
}

outcome<void> readExchange(const QCommandLineParser &parser, runRequest &run)
{
    run.server = httpDatabase::defaultHost();
    if (parser.isSet(QStringLiteral("server"))) {
        run.server = parser.value(QStringLiteral("server"));
        if (!httpDatabase::isServer(run.server)) {
            return failure(QStringLiteral("--server takes HOST or HOST:PORT, or https:// and one "
                                          "of both, not '%1'")
                               .arg(run.server));
        }
    }
    const QStringList names = parser.optionNames();
    run.isUpload = names.lastIndexOf(QStringLiteral("upload"))
                   > names.lastIndexOf(QStringLiteral("no-upload"));
    if (!run.isUpload)
        return {};
    if (run.wanted != runRequest::fullRun) {
        return failure(QStringLiteral("only the results of a full run are uploaded; --upload "
                                      "cannot go with --test"));
    }
    if (run.testTime != benchBase::standardTestTime) {
        return failure(QStringLiteral("only results of %1 seconds per test are uploaded; --upload "
                                      "cannot go with another --time")
                           .arg(benchBase::standardTestTime / 1000));
    }
    if (!run.isOrdinary()) {
        return failure(QStringLiteral("only results that were made as everybody makes them are "
                                      "uploaded; --upload cannot go with --threads or --pin"));
    }
    return {};
}

} // namespace

outcome<outputFiles> readOutputFiles(const QCommandLineParser &parser)
{
    outputFiles files;
    int dashes = 0;
    for (const auto &[name, file] : {std::pair("json", &files.json), std::pair("csv", &files.csv),
                                     std::pair("markdown", &files.markdown)}) {
        const QString option = QLatin1String(name);
        *file = parser.value(option);
        if (parser.isSet(option) && file->isEmpty())
            return failure(QStringLiteral("--%1 takes the name of a file, or -").arg(option));
        dashes += *file == QLatin1String("-") ? 1 : 0;
    }
    if (dashes > 1)
        return failure(QStringLiteral("only one of --json, --csv and --markdown can go to standard "
                                      "output"));
    return files;
}

outcome<runRequest> readRunOptions(const QCommandLineParser &parser,
                                   const std::vector<listedTest> &tests,
                                   const QStringList &resolutionNames)
{
    runRequest run;
    run.isPinned = parser.isSet(QStringLiteral("pin"));
    run.isVerified = parser.isSet(QStringLiteral("verify"));
    run.isQuiet = parser.isSet(QStringLiteral("quiet"));
    return readTests(parser, tests, resolutionNames, run)
        .and_then([&] { return readNumbers(parser, run); })
        .and_then([&] { return readExchange(parser, run); })
        .and_then([&] { return readOutputFiles(parser); })
        .map([&](const outputFiles &files) {
            run.output = files;
            return run;
        });
}
