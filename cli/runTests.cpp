// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/runTests.h"

#include "cli/commandTable.h"
#include "console/standardStreams.h"

namespace
{

exitCode failed(const QString &sentence)
{
    return complain(consoleRunnerName(), sentence);
}

/// Loads the list of machines and this one. The log says where they come from; what could not be
/// read of them is said on standard error.
void load(benchBase &runner)
{
    runner.loadReferenceData(benchBase::normalReference);
    runner.loadUserData();
    for (const QString &problem : runner.getLoadProblems())
        complain(consoleRunnerName(), problem);
}

/// What came of the tests, all repetitions together.
struct ranTests {
    bool isStopped = false;
    int failures = 0; ///< tests without a result
    bool hasFailedStore = false;
};

/// A full run, whose results are stored if they may be compared with those of others.
void runFull(const runRequest &wanted, benchBase &runner, ranTests &ran)
{
    ran.isStopped = runner.runBenchmark();
    ran.failures += runner.getFailedTests();
    if (ran.isStopped)
        return;
    if (wanted.testTime != benchBase::standardTestTime) {
        runner.print(
            QStringLiteral("Only results of %1s per test are stored or uploaded, these are "
                           "not\n")
                .arg(benchBase::standardTestTime / 1000));
    } else if (!wanted.isOrdinary()) {
        runner.print(QStringLiteral("Results with --threads or --pin are neither stored nor "
                                    "uploaded\n"));
    } else if (!runner.storeUserData()) {
        ran.hasFailedStore = true;
    }
}

void runNamed(const runRequest &wanted, benchBase &runner, stopHook &stop, ranTests &ran)
{
    for (const QString &name : wanted.tests) {
        if (!runner.runSingleTest(name, wanted.resolution)) {
            runner.print(QStringLiteral("\n"));
            ++ran.failures;
        }
        ran.isStopped = stop.isStopRequested();
        if (ran.isStopped)
            return;
    }
}

ranTests runAll(const runRequest &wanted, benchBase &runner, stopHook &stop,
                const runEvents &events)
{
    ranTests ran;
    runner.setTestTime(wanted.testTime);
    const int repetitions = wanted.repetitions.value_or(1);
    for (int index = 0; index < repetitions && !ran.isStopped; ++index) {
        if (events.repetitionStarts)
            events.repetitionStarts(index);
        if (wanted.wanted == runRequest::fullRun)
            runFull(wanted, runner, ran);
        else
            runNamed(wanted, runner, stop, ran);
    }
    return ran;
}

/// What the tests themselves make of the exit code, in the words of standard error.
exitCode judge(const runRequest &wanted, const ranTests &ran)
{
    if (ran.hasFailedStore) {
        // An upload would send what was stored before.
        return failed(wanted.isUpload
                          ? QStringLiteral("the results could not be stored, and are not uploaded")
                          : QStringLiteral("the results could not be stored"));
    }
    if (ran.failures > 0) {
        // Only whole runs are uploaded; the record may still hold results of an earlier one.
        return wanted.isUpload
                   ? failed(QStringLiteral("tests without a result: %1; the run is not uploaded")
                                .arg(ran.failures))
                   : exitFailure;
    }
    return exitSuccess;
}

exitCode upload(benchBase &runner)
{
    if (runner.uploadResults())
        return exitSuccess;
    const QString refusal = runner.getUploadRefusal();
    if (!refusal.isEmpty())
        failed(QStringLiteral("the upload was refused: %1").arg(refusal));
    return exitNoUpload;
}

} // namespace

exitCode runTests(const runRequest &wanted, benchBase &runner, stopHook &stop,
                  const runEvents &events, const std::function<exitCode()> &stopped)
{
    load(runner);
    if (stop.isStopRequested()) {
        runner.print(QStringLiteral("stopped by user ...\n"));
        return stopped();
    }
    const ranTests ran = runAll(wanted, runner, stop, events);
    const exitCode kept = events.ended ? events.ended(ran.isStopped) : exitSuccess;
    if (ran.isStopped)
        return stopped();
    const exitCode code = judge(wanted, ran);
    if (code != exitSuccess)
        return code;
    const exitCode uploaded = wanted.isUpload ? upload(runner) : exitSuccess;
    return kept != exitSuccess ? kept : uploaded;
}
