// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include "console/standardStreams.h"
#include "data/httpDatabase.h"

#include <csignal>

namespace
{

volatile std::sig_atomic_t interrupted = 0;

/// A second Ctrl-C ends the program at once.
extern "C" void noteInterrupt(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

/// A program that was started in the background may have been told to ignore Ctrl-C, which is meant
/// for others; then it goes on ignoring it.
void listenToInterrupts()
{
    if (std::signal(SIGINT, noteInterrupt) == SIG_IGN)
        std::signal(SIGINT, SIG_IGN);
}

class interruptHook : public stopHook
{
public:
    interruptHook() { listenToInterrupts(); }
    bool isStopRequested() override { return interrupted != 0; }
};

/// Drops the log of a runner that is only asked for its lists.
class silence : public printHook
{
public:
    void print(const QString &) override {}
};

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

/// The exit code of a full run and of what follows it.
exitCode runFull(const commandLine &command, benchBase &runner)
{
    if (runner.runBenchmark())
        return exitInterrupted;
    if (command.testTime != benchBase::standardTestTime) {
        runner.print(
            QStringLiteral("Only results of %1s per test are stored or uploaded, these are "
                           "not\n")
                .arg(benchBase::standardTestTime / 1000));
        return runner.getFailedTests() > 0 ? exitFailure : exitSuccess;
    }
    if (!runner.storeUserData()) {
        // An upload would send what was stored before.
        return failed(command.isUpload
                          ? QStringLiteral("the results could not be stored, and are not uploaded")
                          : QStringLiteral("the results could not be stored"));
    }
    if (runner.getFailedTests() > 0) {
        // Only whole runs are uploaded; the record may still hold results of an earlier one.
        return command.isUpload
                   ? failed(QStringLiteral("tests without a result: %1; the run is not uploaded")
                                .arg(runner.getFailedTests()))
                   : exitFailure;
    }
    if (!command.isUpload || runner.uploadResults())
        return exitSuccess;
    const QString refusal = runner.getUploadRefusal();
    return refusal.isEmpty() ? exitFailure
                             : failed(QStringLiteral("the upload was refused: %1").arg(refusal));
}

} // namespace

exitCode runTests(const commandLine &command, benchBase &runner, stopHook &stop)
{
    load(runner);
    if (stop.isStopRequested()) {
        runner.print(QStringLiteral("stopped by user ...\n"));
        return exitInterrupted;
    }
    runner.setTestTime(command.testTime);
    if (command.wanted == commandLine::runFull)
        return runFull(command, runner);

    bool isComplete = true;
    for (const QString &name : command.tests) {
        if (!runner.runSingleTest(name, command.resolution)) {
            runner.print(QStringLiteral("\n"));
            isComplete = false;
        }
        if (stop.isStopRequested())
            return exitInterrupted;
    }
    return isComplete ? exitSuccess : exitFailure;
}

exitCode runConsole(const QStringList &arguments)
{
    silence silent;
    const benchBase lists(&silent, nullptr, nullptr);
    const parsed<commandLine> command =
        parseCommandLine(arguments, lists.getTestNames(), lists.getResolutionNames());
    if (!command)
        return sayInClosing(command.error());
    interruptHook stop;
    benchBase runner(nullptr, &stop, nullptr, makeSuite(nullptr),
                     std::make_unique<httpDatabase>(command->server));
    return runTests(*command, runner, stop);
}
