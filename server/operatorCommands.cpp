// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/operatorCommands.h"

#include "console/standardStreams.h"
#include "data/builtInList.h"
#include "server/importExport.h"
#include "server/publisher.h"
#include "server/serverCommand.h"

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

exitCode publish(resultStore &store)
{
    publisher lists(builtInMachines());
    int uploads = 0;
    const auto made = [&] { return resultStore::lists{lists.list(false), lists.list(true)}; };
    const outcome<int> version = store.publish(
        [&](const storedUpload &upload) {
            lists.add(upload);
            ++uploads;
        },
        made);
    if (!version)
        return failed(QStringLiteral("nothing was published: %1").arg(version.error()));
    return succeeded(QStringLiteral("Published version %1 from %2 uploads\n")
                         .arg(QString::number(*version), QString::number(uploads)));
}

exitCode importFile(resultStore &store, const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return failed(QStringLiteral("'%1' cannot be read: %2").arg(path, file.errorString()));
    }
    const outcome<importReport> report =
        importFrom(file, store, QDateTime::currentMSecsSinceEpoch());
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

exitCode withdraw(resultStore &store, qint64 id, const QString &reason)
{
    const outcome<bool> isFound = store.withdraw(id, reason);
    if (!isFound)
        return failed(QStringLiteral("nothing was withdrawn: %1").arg(isFound.error()));
    if (!*isFound)
        return failed(QStringLiteral("there is no upload %1").arg(id));
    return succeeded(
        QStringLiteral("Upload %1 is withdrawn; the next version will be without it\n").arg(id));
}

exitCode list(resultStore &store)
{
    const auto row = [](const QString &id, const QString &time, const QString &state,
                        const QString &rest) {
        writeText(id.rightJustified(8) + QStringLiteral("  ") + time.leftJustified(20)
                      + QStringLiteral("  ") + state.leftJustified(9) + QStringLiteral("  ") + rest
                      + QLatin1Char('\n'),
                  stdout);
    };
    row(QStringLiteral("ID"), QStringLiteral("RECEIVED (UTC)"), QStringLiteral("STATE"),
        QStringLiteral("PROCESSOR, SYSTEM, THREADS, RESULTS"));
    const outcome<void> done = store.forEachUpload([&row](const storedUpload &upload) {
        const benchResults machine = uploadedMachine(upload);
        const QString text =
            QStringLiteral("%1, %2, %3, %4")
                .arg(machine.getCpu(), machine.getOs(), QString::number(machine.getThreads()),
                     QString::number(machine.getTests().size()));
        const QString reason =
            upload.reason.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(upload.reason);
        row(QString::number(upload.id),
            QDateTime::fromMSecsSinceEpoch(upload.received, Qt::UTC).toString(Qt::ISODate),
            upload.state,
            text + (upload.isEmpty ? QStringLiteral(", all zero") : QString()) + reason);
    });
    return done ? exitSuccess : failed(done.error());
}

} // namespace

exitCode runOperatorCommand(const serverCommand &command)
{
    resultStore store(command.options.database);
    if (const outcome<void> isOpen = store.open(); !isOpen)
        return failed(QStringLiteral("the database cannot be opened: %1").arg(isOpen.error()));
    switch (command.wanted) {
    case serverCommand::publish:
        return publish(store);
    case serverCommand::importFile:
        return importFile(store, command.file);
    case serverCommand::exportAll:
        return exportToOutput(store);
    case serverCommand::withdraw:
        return withdraw(store, command.id, command.reason);
    default:
        return list(store);
    }
}
