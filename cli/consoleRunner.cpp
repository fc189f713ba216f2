// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/consoleRunner.h"

#include "cli/commandLine.h"
#include "cli/compareCommand.h"
#include "cli/completion.h"
#include "cli/doctorCommand.h"
#include "cli/helpText.h"
#include "cli/historyCommand.h"
#include "cli/listCommand.h"
#include "cli/runCommand.h"
#include "cli/verifyCommand.h"
#include "console/standardStreams.h"

namespace
{

exitCode say(const QString &text)
{
    writeText(text, stdout);
    return exitSuccess;
}

/// Does what each request asks for.
struct doer {
    const QStringList &resolutionNames;

    exitCode operator()(const runRequest &wanted) const { return runCommand(wanted); }
    exitCode operator()(const listRequest &wanted) const
    {
        return listCommand(wanted, resolutionNames);
    }
    exitCode operator()(const verifyRequest &) const { return verifyCommand(); }
    exitCode operator()(const historyRequest &) const { return historyCommand(); }
    exitCode operator()(const showRequest &wanted) const { return showCommand(wanted); }
    exitCode operator()(const compareRequest &wanted) const { return compareCommand(wanted); }
    exitCode operator()(const doctorRequest &) const { return doctorCommand(); }
    exitCode operator()(const completionRequest &wanted) const
    {
        return say(completionScript(wanted.shell));
    }
    exitCode operator()(const completeRequest &wanted) const
    {
        const QStringList words =
            completionCandidates(wanted.words, {listedTests(), resolutionNames});
        return words.isEmpty() ? exitSuccess
                               : say(words.join(QLatin1Char('\n')) + QLatin1Char('\n'));
    }
    exitCode operator()(const manualRequest &) const { return say(manualPage()); }
};

} // namespace

exitCode runConsole(const QStringList &arguments)
{
    const QStringList resolutionNames = benchBase::standardResolutionNames();
    const parsed<request> wanted = parseCommandLine(arguments, listedTests(), resolutionNames);
    if (!wanted)
        return sayInClosing(wanted.error());
    return std::visit(doer{resolutionNames}, *wanted);
}
