// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/verifyCommand.h"

#include "cli/commandTable.h"
#include "cli/consoleLog.h"
#include "cli/signalStop.h"
#include "console/standardStreams.h"
#include "tests/frameCheck.h"

#include <algorithm>

namespace
{

/// Some rounds at these sizes take seconds for all tests together; the standard resolution would
/// take a minute on a slow machine.
constexpr int mostPixels = 640 * 480;

QString wordFor(digestVerdict verdict)
{
    switch (verdict) {
    case digestVerdict::right:
        return QStringLiteral("ok");
    case digestVerdict::wrong:
        return QStringLiteral("WRONG");
    case digestVerdict::cannotTell:
        break;
    }
    return QStringLiteral("cannot tell");
}

} // namespace

QMap<QString, digestVerdict> verifyTests(const suite &tests, printHook &log, stopHook &stop)
{
    constexpr int nameWidth = 36;
    QMap<QString, digestVerdict> verdicts;
    for (const auto &test : tests) {
        if (stop.isStopRequested())
            break;
        const digestVerdict verdict = checkFrames(*test, mostPixels);
        verdicts.insert(test->getName(), verdict);
        log.print(QStringLiteral("%1 %2\n").arg(test->getName(), nameWidth).arg(wordFor(verdict)));
    }
    return verdicts;
}

exitCode verifyCode(const QMap<QString, digestVerdict> &verdicts)
{
    const auto has = [&verdicts](digestVerdict verdict) {
        return std::find(verdicts.begin(), verdicts.end(), verdict) != verdicts.end();
    };
    if (has(digestVerdict::wrong))
        return exitFailure;
    return has(digestVerdict::cannotTell) ? exitCannotTell : exitSuccess;
}

exitCode verifyCommand()
{
    signalStop stop;
    consoleLog log(stdout, nullptr);
    const exitCode code = verifyCode(verifyTests(makeSuite(nullptr), log, stop));
    if (stop.isStopRequested()) {
        complain(consoleRunnerName(), QStringLiteral("stopped before all tests were checked"));
        return stop.code();
    }
    if (code == exitFailure) {
        complain(consoleRunnerName(),
                 QStringLiteral("a test draws what it must not: this build is broken, or the "
                                "machine is (too high a clock, bad memory). Its results mean "
                                "nothing"));
    }
    return code;
}
