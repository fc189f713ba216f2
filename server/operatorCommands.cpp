// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/operatorCommands.h"

#include "console/standardStreams.h"
#include "data/builtInList.h"
#include "server/importExport.h"
#include "server/publication.h"
#include "server/publishPreview.h"
#include "server/serverCommand.h"
#include "server/uploadCommands.h"

#include <QFile>

namespace
{

exitCode failed(const QString &reason)
{
    return complain(serverProgramName(), reason);
}

exitCode succeeded(const QString &text)
{
    writeText(text, stdout);
    return exitSuccess;
}

QString leftOutText(const char *list, qint64 machines)
{
    return machines == 0 ? QString()
                         : QStringLiteral("No room on the %1 list for %2 machines\n")
                               .arg(QLatin1String(list), QString::number(machines));
}

exitCode publish(resultStore &store, publishOptions options)
{
    options.now = QDateTime::currentMSecsSinceEpoch();
    const QVector<benchResults> builtIn = builtInMachines();
    const outcome<publishReport> report = publication(store, builtIn, options).run();
    if (!report)
        return failed(QStringLiteral("publishing has failed: %1").arg(report.error()));
    const QString version = QString::number(report->version);
    const QString first =
        report->isNew ? QStringLiteral("Published version %1 from %2 uploads\n")
                            .arg(version, QString::number(report->uploads))
                      : QStringLiteral("Nothing has changed, version %1 stays\n").arg(version);
    return succeeded(first + leftOutText("normal", report->leftOut)
                     + leftOutText("BETA", report->leftOutBeta));
}

QString changesText(const char *list, const QStringList &lines)
{
    QString text;
    for (const QString &line : lines)
        text += QString::fromLatin1(list).leftJustified(6) + QStringLiteral("  ") + line
                + QLatin1Char('\n');
    return text;
}

exitCode showWhatWouldChange(resultStore &store, ruleSet rules)
{
    const outcome<publishPreview> preview = previewOf(store, builtInMachines(), rules);
    if (!preview)
        return failed(preview.error());
    if (!preview->isNew)
        return succeeded(
            QStringLiteral("Nothing would change, version %1 stays\n").arg(preview->version));
    return succeeded(
        changesText("normal", preview->normal) + changesText("BETA", preview->beta)
        + QStringLiteral("Nothing was changed; publish would make a version after %1\n")
              .arg(preview->version));
}

exitCode importFile(resultStore &store, const QString &path, bool isEndOptional)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return failed(QStringLiteral("'%1' cannot be read: %2").arg(path, file.errorString()));
    }
    const outcome<importReport> report =
        importFrom(file, store, {QDateTime::currentMSecsSinceEpoch(), isEndOptional});
    if (!report) {
        return failed(
            QStringLiteral("nothing was imported from '%1': %2").arg(path, report.error()));
    }
    return succeeded(
        QStringLiteral("Read %1 uploads and %2 lists, passed over %3 modelled machines\n")
            .arg(QString::number(report->uploads), QString::number(report->lists),
                 QString::number(report->estimates)));
}

/// Whether all of it could be written is checked at the end of the program.
exitCode exportToOutput(resultStore &store)
{
    QFile output;
    output.open(stdout, QIODevice::WriteOnly);
    const outcome<void> done = exportTo(store, output);
    if (!done)
        return failed(QStringLiteral("the export is not complete: %1").arg(done.error()));
    return exitSuccess;
}

/// What only reads must not even make a file.
databaseUse useOf(const serverCommand &command)
{
    const bool isReading = command.isDryRun || command.wanted == serverCommand::list
                           || command.wanted == serverCommand::exportAll;
    return isReading ? databaseUse::reading : databaseUse::operating;
}

} // namespace

exitCode runOperatorCommand(const serverCommand &command)
{
    resultStore store(command.options.database, useOf(command));
    if (const outcome<void> isOpen = store.open(); !isOpen)
        return failed(QStringLiteral("the database cannot be opened: %1").arg(isOpen.error()));
    const auto moderate = [&](moderation::action wanted) {
        return moderateUploads(store, wanted, command.request, command.isDryRun);
    };
    switch (command.wanted) {
    case serverCommand::publish:
        return command.isDryRun ? showWhatWouldChange(store, command.publishing.rules)
                                : publish(store, command.publishing);
    case serverCommand::importFile:
        return importFile(store, command.file, command.isEndOptional);
    case serverCommand::exportAll:
        return exportToOutput(store);
    case serverCommand::withdraw:
        return moderate(moderation::action::withdraw);
    case serverCommand::restore:
        return moderate(moderation::action::restore);
    case serverCommand::acceptHeld:
        return moderate(moderation::action::accept);
    case serverCommand::forget:
        return moderate(moderation::action::forget);
    default:
        return listUploads(store, command.request);
    }
}
