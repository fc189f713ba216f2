// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/historyCommand.h"

#include "cli/commandTable.h"
#include "cli/outputs.h"
#include "console/standardStreams.h"
#include "data/runStore.h"
#include "data/runText.h"

outcome<runRecord> findRun(const QString &which)
{
    const runStore store = runStore::ofUser();
    const QStringList names = store.names();
    if (which.isEmpty() || which == QLatin1String("last")) {
        if (names.isEmpty())
            return failure(QStringLiteral("no run has been kept yet"));
        return store.read(names.last()).map([](const runStore::keptRun &kept) { return kept.run; });
    }
    bool isNumber = false;
    which.toInt(&isNumber);
    if (isNumber || names.contains(which))
        return store.read(which).map([](const runStore::keptRun &kept) { return kept.run; });
    return readRunFile(which);
}

exitCode historyCommand()
{
    const runStore::listing listing = runStore::ofUser().list();
    for (const QString &problem : listing.problems)
        complain(consoleRunnerName(), problem);
    if (listing.runs.empty())
        return complain(consoleRunnerName(), QStringLiteral("no run has been kept yet"));
    std::vector<runRecord> runs;
    for (const runStore::keptRun &kept : listing.runs)
        runs.push_back(kept.run);
    writeText(historyText(runs), stdout);
    return exitSuccess;
}

exitCode showCommand(const showRequest &wanted)
{
    const exitCode writable = checkOutputs(wanted.output);
    if (writable != exitSuccess)
        return writable;
    const outcome<runRecord> run = findRun(wanted.run);
    if (!run)
        return complain(consoleRunnerName(), run.error());
    if (!wanted.output.isOnStandardOutput())
        writeText(runText(*run), stdout);
    return writeOutputs(wanted.output, *run);
}
