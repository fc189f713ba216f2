// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include "data/httpDatabase.h"

#include <csignal>
#include <cstdio>

namespace
{

volatile std::sig_atomic_t interrupted = 0;

/// A second Ctrl-C ends the program at once.
extern "C" void noteInterrupt(int signal)
{
    interrupted = 1;
    std::signal(signal, SIG_DFL);
}

class interruptHook : public stopHook
{
public:
    interruptHook() { std::signal(SIGINT, noteInterrupt); }
    bool isStopRequested() override { return interrupted != 0; }
};

/// Keeps the log of a runner that is only asked for its lists from being seen.
class silence : public printHook
{
public:
    void print(const QString &) override {}
};

void write(const QString &text, std::FILE *stream)
{
    std::fputs(text.toLocal8Bit().constData(), stream);
}

/// The exit code of a full run and of what follows it.
int runFull(const commandLine &command, benchBase &runner)
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
    runner.storeUserData();
    if (runner.getFailedTests() > 0) {
        // What is uploaded is a whole run, and what an earlier one left in the record is none.
        if (command.isUpload)
            runner.print(QStringLiteral("Not uploaded: tests without a result: %1\n")
                             .arg(runner.getFailedTests()));
        return exitFailure;
    }
    return !command.isUpload || runner.uploadResults() ? exitSuccess : exitFailure;
}

} // namespace

int runTests(const commandLine &command, benchBase &runner, stopHook &stop)
{
    runner.loadReferenceData(benchBase::normalReference);
    runner.loadUserData();
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

int runConsole(const QStringList &arguments)
{
    silence silent;
    const benchBase lists(&silent, nullptr, nullptr);
    const commandLine command =
        parseCommandLine(arguments, lists.getTestNames(), lists.getResolutionNames());
    switch (command.wanted) {
    case commandLine::showText:
        write(command.message, stdout);
        return exitSuccess;
    case commandLine::showError:
        write(command.message, stderr);
        return exitUsage;
    case commandLine::runFull:
    case commandLine::runTests:
        break;
    }
    interruptHook stop;
    benchBase runner(nullptr, &stop, nullptr, makeSuite(nullptr),
                     std::make_unique<httpDatabase>(command.server));
    return runTests(command, runner, stop);
}
