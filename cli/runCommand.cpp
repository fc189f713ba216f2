// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/runCommand.h"

#include "cli/commandTable.h"
#include "cli/consoleLog.h"
#include "cli/outputs.h"
#include "cli/preparation.h"
#include "cli/progressLine.h"
#include "cli/runTests.h"
#include "cli/signalStop.h"
#include "cli/testChoice.h"
#include "cli/verifyCommand.h"
#include "console/standardStreams.h"
#include "data/disturbances.h"
#include "data/httpDatabase.h"
#include "data/instanceLock.h"
#include "data/runRecorder.h"
#include "data/runStore.h"
#include "data/runText.h"
#include "data/startingMoment.h"
#include "engine/hookList.h"

#include <QThread>

#include <omp.h>

namespace
{

void say(const QString &sentence)
{
    complain(consoleRunnerName(), sentence);
}

/// How many tests are measured, repetitions counted.
int plannedTests(const runRequest &wanted)
{
    int count = static_cast<int>(wanted.tests.size());
    if (wanted.wanted == runRequest::fullRun) {
        for (const listedTest &test : listedTests())
            count += test.isInFullRuns ? 1 : 0;
    }
    return count * wanted.repetitions.value_or(1);
}

runSettings settingsOf(const runRequest &wanted, std::optional<int> pinned)
{
    runSettings settings;
    settings.wanted =
        wanted.wanted == runRequest::fullRun ? runSettings::fullRun : runSettings::someTests;
    settings.testTime = wanted.testTime;
    settings.repetitions = wanted.repetitions.value_or(1);
    settings.warmUpSeconds = wanted.warmUpSeconds;
    settings.threads = wanted.threads;
    settings.pinnedProcessor = pinned;
    return settings;
}

/// What goes to the terminal during a run: the log, and a line of progress where there is one.
struct terminalOutput {
    explicit terminalOutput(const runRequest &wanted)
        : line(stderr, [isQuiet = wanted.isQuiet] { return isQuiet ? 0 : terminalWidth(stderr); }),
          log(logStream(wanted), isLogOnTerminal(wanted) ? &line : nullptr)
    {
    }

    static std::FILE *logStream(const runRequest &wanted)
    {
        if (wanted.isQuiet)
            return nullptr;
        return wanted.output.isOnStandardOutput() ? stderr : stdout;
    }
    static bool isLogOnTerminal(const runRequest &wanted)
    {
        std::FILE *stream = logStream(wanted);
        return stream && terminalWidth(stream) > 0;
    }

    liveLine line;
    consoleLog log;
};

/// Waits for quiet if that was asked for, and says what disturbs a measurement here.
void prepare(const runRequest &wanted, instanceLock &lock, stopHook &stop)
{
    constexpr unsigned long second = 1;
    if (wanted.idleSeconds > 0
        && !waitForQuiet(wanted.idleSeconds, stop, [] { QThread::sleep(second); })
        && !stop.isStopRequested()) {
        say(QStringLiteral("warning: other programs were busy for all of %1 seconds")
                .arg(wanted.idleSeconds));
    }
    const bool isOtherRunning = !lock.hold() && lock.isOtherRunning();
    const int threads = thisMachine().threads;
    for (const disturbance &one : disturbancesOf(readMachineContext(), readStartingMoment(threads),
                                                 thisBuild(), threads, isOtherRunning)) {
        if (one.how == disturbance::warning)
            say(warningText(one));
    }
}

/// What was found by a check before the run, or the code with which the program ends.
tl::expected<QMap<QString, digestVerdict>, exitCode> verifyFirst(const runRequest &wanted,
                                                                 printHook &log, signalStop &stop)
{
    if (!wanted.isVerified)
        return QMap<QString, digestVerdict>();
    const auto verdicts = verifyTests(makeSuite(nullptr), log, stop);
    if (stop.isStopRequested())
        return tl::unexpected(stop.code());
    if (verifyCode(verdicts) == exitFailure) {
        say(QStringLiteral("a test draws what it must not, so there is no run: its results would "
                           "mean nothing"));
        return tl::unexpected(exitWrong);
    }
    return verdicts;
}

/// Keeps and writes what is known of the run. What could not be written is said.
exitCode keep(const runRequest &wanted, const runRecord &record)
{
    exitCode code = exitSuccess;
    if (wanted.wanted == runRequest::fullRun || wanted.repetitions) {
        const auto kept = runStore::ofUser().append(record);
        if (!kept) {
            say(QStringLiteral("the run is not kept: %1").arg(kept.error()));
            code = exitLostOutput;
        }
    }
    const exitCode written = writeOutputs(wanted.output, record);
    return written == exitSuccess ? code : written;
}

/// The tests, between a record that begins and one that ends.
exitCode runRecorded(const runRequest &wanted, benchBase &runner, terminalOutput &terminal,
                     signalStop &stop, const QMap<QString, digestVerdict> &verdicts)
{
    std::unique_ptr<pinHook> pin;
    if (wanted.isPinned) {
        pin = std::make_unique<pinHook>();
        if (!pin->chosen())
            say(QStringLiteral("warning: no processor can be chosen here; --pin does nothing"));
    }
    if (wanted.threads)
        omp_set_num_threads(*wanted.threads);
    runRecorder recorder(settingsOf(wanted, pin ? pin->chosen() : std::nullopt));
    recorder.setVerdicts(verdicts);
    progressLine progress(terminal.line, plannedTests(wanted),
                          std::chrono::milliseconds(wanted.testTime));
    hookList hooks;
    if (pin)
        hooks.add(pin.get());
    hooks.add(&recorder);
    hooks.add(&progress);
    runner.setMeasurementHook(&hooks);

    runEvents events;
    events.repetitionStarts = [&](int index) {
        recorder.setRepetition(index);
        if (index == 0 && wanted.warmUpSeconds > 0)
            warmUp(runner.getTests(), runner.standardResolution(),
                   std::chrono::seconds(wanted.warmUpSeconds), stop);
    };
    events.ended = [&](bool isStopped) {
        const runRecord record = recorder.finish(isStopped);
        terminal.log.print(repetitionsText(record));
        return keep(wanted, record);
    };
    const exitCode code = runTests(wanted, runner, stop, events, [&stop] { return stop.code(); });
    runner.setMeasurementHook(nullptr);
    if (pin && !pin->isPinned())
        say(QStringLiteral("warning: %1").arg(pin->isPinned().error()));
    return code;
}

} // namespace

exitCode runCommand(const runRequest &wanted)
{
    signalStop stop;
    const exitCode writable = checkOutputs(wanted.output);
    if (writable != exitSuccess)
        return writable;
    terminalOutput terminal(wanted);
    instanceLock lock;
    prepare(wanted, lock, stop);
    const auto verdicts = verifyFirst(wanted, terminal.log, stop);
    if (!verdicts)
        return verdicts.error();
    benchBase runner(&terminal.log, &stop, nullptr, makeSuite(&terminal.log),
                     std::make_unique<httpDatabase>(wanted.server));
    return runRecorded(wanted, runner, terminal, stop, *verdicts);
}
