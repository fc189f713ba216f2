// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/commandTable.h"

#include "data/httpDatabase.h"

#include <algorithm>
#include <limits>

namespace
{

constexpr int anyNumber = std::numeric_limits<int>::max();

std::vector<optionRow> outputOptions()
{
    return {
        {QStringLiteral("json"), '\0', QStringLiteral("FILE"),
         QStringLiteral("Writes everything about the run as JSON; - stands for standard output, "
                        "where nothing else goes then."),
         completes::files, true},
        {QStringLiteral("csv"), '\0', QStringLiteral("FILE"),
         QStringLiteral("Writes a table with comma-separated values."), completes::files, true},
        {QStringLiteral("markdown"), '\0', QStringLiteral("FILE"),
         QStringLiteral("Writes a table to paste into a page."), completes::files, true},
    };
}

std::vector<optionRow> choiceOptions()
{
    return {
        {QStringLiteral("test"), 't', QStringLiteral("NAME"),
         QStringLiteral("Runs this test alone; may be given several times. A beginning of the name "
                        "that fits one test will do; single and multi stand for all tests of one "
                        "kind, and * and ? for any letters."),
         completes::tests},
        {QStringLiteral("resolution"), 'r', QStringLiteral("WxH"),
         QStringLiteral("Virtual resolution of the tests named by --test; the first one listed is "
                        "the standard."),
         completes::resolutions},
        {QStringLiteral("time"), '\0', QStringLiteral("SECONDS"),
         QStringLiteral("Whole seconds that each test runs; 8 if absent.")},
        {QStringLiteral("repeat"), 'n', QStringLiteral("N"),
         QStringLiteral("Does it all N times, each time all of the tests in their order, so that "
                        "heat hits all alike.")},
        {QStringLiteral("list"),
         '\0',
         {},
         QStringLiteral("Lists the tests and the resolutions, with --json for programs.")},
    };
}

std::vector<optionRow> surroundingOptions()
{
    return {
        {QStringLiteral("warmup"), '\0', QStringLiteral("SECONDS"),
         QStringLiteral("Works for so long before the first test, without measuring.")},
        {QStringLiteral("wait-idle"), '\0', QStringLiteral("SECONDS"),
         QStringLiteral("Waits for at most so long until other programs leave the processor "
                        "alone.")},
        {QStringLiteral("threads"), '\0', QStringLiteral("N"),
         QStringLiteral("Uses N threads for the multi-core tests. Such results are not stored or "
                        "uploaded.")},
        {QStringLiteral("pin"),
         '\0',
         {},
         QStringLiteral("Keeps single-core tests on the processor with the highest clock. Such "
                        "results are not stored or uploaded.")},
        {QStringLiteral("verify"),
         '\0',
         {},
         QStringLiteral("Checks every test first, as the command verify does, and does not run if "
                        "anything is wrong.")},
    };
}

std::vector<optionRow> exchangeOptions()
{
    return {
        {QStringLiteral("upload"),
         '\0',
         {},
         QStringLiteral("Uploads the results of a full run to the online database.")},
        {QStringLiteral("no-upload"),
         '\0',
         {},
         QStringLiteral("Keeps them on this machine, as if --upload was absent. The later one of "
                        "the two counts.")},
        {QStringLiteral("server"), '\0', QStringLiteral("[https://]HOST[:PORT]"),
         QStringLiteral("The online database; %1 if absent.").arg(httpDatabase::defaultHost())},
        {QStringLiteral("quiet"),
         'q',
         {},
         QStringLiteral("Neither log nor progress: only what is wrong, and what --json, --csv or "
                        "--markdown write.")},
    };
}

commandRow runRow()
{
    commandRow row = {{}, {}, 0, QStringLiteral("A full run, or the tests that are named.")};
    for (const auto &options :
         {choiceOptions(), surroundingOptions(), exchangeOptions(), outputOptions()})
        row.options.insert(row.options.end(), options.begin(), options.end());
    return row;
}

commandRow verifyRow()
{
    return {QStringLiteral("verify"),
            {},
            0,
            QStringLiteral("Checks whether this machine and this build compute rightly."),
            QStringLiteral("Runs every workload for a few rounds and compares what it draws with "
                           "what is known, to the last bit: an unstable clock, broken memory or a "
                           "miscompiled build show here. Ends with 1 if a test is wrong, and with "
                           "3 if none is but one could not be told."),
            {}};
}

commandRow showRow()
{
    commandRow row = {QStringLiteral("show"), QStringLiteral("[RUN]"), 1,
                      QStringLiteral("Shows a run that was kept, the last one if none is named."),
                      QStringLiteral("RUN is a number of the history, or a file of --json.")};
    row.options = outputOptions();
    row.with = completes::runs;
    return row;
}

commandRow compareRow()
{
    return {QStringLiteral("compare"),
            QStringLiteral("[A] [B]"),
            2,
            QStringLiteral("Compares two runs, or a run with a machine of the list."),
            QStringLiteral(
                "A and B are numbers of the history, files of --json, last, or stored "
                "for the results that are ranked and uploaded. Without B it is the last "
                "run, and without A the one before it. The figures are those of B in "
                "relation to A. Says \"no clear difference\" where there are enough rounds to tell "
                "that."),
            {{QStringLiteral("with"), '\0', QStringLiteral("MACHINE"),
              QStringLiteral("Compares A, or the last run, with the machine of the list whose name "
                             "or processor holds this text; the machine takes the place of A, and "
                             "A that of B.")}},
            completes::runs};
}

commandRow completionRow()
{
    return {QStringLiteral("completion"),
            QStringLiteral("SHELL"),
            1,
            QStringLiteral("Prints a completion script for bash, zsh or fish."),
            {},
            {},
            completes::shells};
}

commandRow completeRow()
{
    return {QStringLiteral("complete"),
            QStringLiteral("-- WORD..."),
            anyNumber,
            QStringLiteral("Prints what the last word can be, for completion scripts."),
            {},
            {}};
}

} // namespace

const std::vector<commandRow> &commandTable()
{
    static const std::vector<commandRow> table = {
        runRow(),
        verifyRow(),
        {QStringLiteral("history"),
         {},
         0,
         QStringLiteral("Lists the runs that were kept, newest last."),
         QStringLiteral("Beside each stands the geometric mean of its results, relative to the "
                        "first run with the same tests and to the one before.")},
        showRow(),
        compareRow(),
        {QStringLiteral("doctor"),
         {},
         0,
         QStringLiteral("What disturbs a measurement on this machine, and what to do about it.")},
        completionRow(),
        completeRow(),
        {QStringLiteral("manual"), {}, 0, QStringLiteral("Prints the manual page.")},
    };
    return table;
}

const commandRow *findCommand(const QString &name)
{
    const auto &table = commandTable();
    const auto row = std::find_if(table.begin(), table.end(),
                                  [&name](const commandRow &one) { return one.name == name; });
    return row == table.end() ? nullptr : &*row;
}

const std::vector<exitCodeRow> &exitCodeTable()
{
    static const std::vector<exitCodeRow> table = {
        {exitSuccess, QStringLiteral("all went well")},
        {exitFailure, QStringLiteral("a test gave no result or was found wrong by verify, the "
                                     "results could not be stored, or there is nothing to show")},
        {exitUsage, QStringLiteral("the arguments make no sense")},
        {exitCannotTell, QStringLiteral("verify could not tell of a test whether it is right")},
        {exitWrong, QStringLiteral("--verify found a test that is wrong; nothing was run")},
        {exitLostOutput, QStringLiteral("not all of the output could be written")},
        {exitNoUpload, QStringLiteral("the results are stored, but could not be uploaded")},
        {exitHungUp, QStringLiteral("the run was stopped by a hang-up")},
        {exitInterrupted, QStringLiteral("the run was stopped by Ctrl-C")},
        {exitTerminated, QStringLiteral("the run was stopped by SIGTERM")},
    };
    return table;
}

QString consoleRunnerName()
{
    return QStringLiteral("fennick-cli");
}
