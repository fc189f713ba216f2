// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/outputs.h"

#include "cli/commandTable.h"
#include "console/standardStreams.h"
#include "data/runJson.h"
#include "data/runReport.h"
#include "data/wholeFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace
{

const QString standardOutput = QStringLiteral("-");

exitCode lost(const QString &sentence)
{
    complain(consoleRunnerName(), sentence);
    return exitLostOutput;
}

/// Whether @p name is a pipe or a device, such as a shell's >(command). It must be written to, and
/// never be replaced by a file.
bool isDevice(const QString &name)
{
    const QFileInfo info(name);
    return info.exists() && !info.isFile() && !info.isDir();
}

outcome<void> writeDevice(const QString &name, const QByteArray &content)
{
    QFile device(name);
    if (device.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && device.write(content) == content.size())
        return {};
    return failure(QStringLiteral("'%1' cannot be written: %2").arg(name, device.errorString()));
}

} // namespace

exitCode writeOutput(const QString &name, const QByteArray &content)
{
    if (name == standardOutput) {
        // What does not get through is noticed at the end of the program.
        std::fwrite(content.constData(), 1, static_cast<std::size_t>(content.size()), stdout);
        std::fflush(stdout);
        return exitSuccess;
    }
    const outcome<void> isWritten =
        isDevice(name) ? writeDevice(name, content) : writeWholeFile(name, content);
    return isWritten ? exitSuccess : lost(isWritten.error());
}

exitCode writeOutputs(const outputFiles &files, const runRecord &record)
{
    exitCode code = exitSuccess;
    const auto write = [&](const QString &name, QByteArray (*text)(const runRecord &)) {
        if (name.isEmpty())
            return;
        const exitCode one = writeOutput(name, text(record));
        code = one == exitSuccess ? code : one;
    };
    write(files.json, toJson);
    write(files.csv, toCsv);
    write(files.markdown, [](const runRecord &run) { return toMarkdown(run).toUtf8(); });
    return code;
}

exitCode checkOutputs(const outputFiles &files)
{
    for (const QString &name : {files.json, files.csv, files.markdown}) {
        if (name.isEmpty() || name == standardOutput || isDevice(name))
            continue;
        QSaveFile file(name);
        if (!file.open(QIODevice::WriteOnly))
            return lost(QStringLiteral("'%1' cannot be written: %2").arg(name, file.errorString()));
        file.cancelWriting();
    }
    return exitSuccess;
}
