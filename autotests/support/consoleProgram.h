// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QProcess>

/// The real console runner, in a process of its own. FENNICK_CLI says where it is.
class consoleProgram
{
public:
    explicit consoleProgram(const QStringList &arguments)
    {
        process.start(QStringLiteral(FENNICK_CLI), arguments);
    }
    /// The console runner as "$@" of a shell's @p script.
    consoleProgram(const QString &script, const QStringList &arguments)
    {
        process.start(QStringLiteral("sh"),
                      QStringList({QStringLiteral("-c"), script, QStringLiteral("sh"),
                                   QStringLiteral(FENNICK_CLI)})
                          + arguments);
    }
    /// The exit code, after which both outputs are complete; -1 for a crash or no end.
    int exitCode()
    {
        if (!process.waitForFinished(120'000) || process.exitStatus() != QProcess::NormalExit)
            return -1;
        out += QString::fromLocal8Bit(process.readAllStandardOutput());
        err += QString::fromLocal8Bit(process.readAllStandardError());
        return process.exitCode();
    }
    /// Waits until the standard output holds @p text.
    bool waitFor(const QString &text)
    {
        while (!out.contains(text)) {
            if (!process.waitForReadyRead(60'000))
                return false;
            out += QString::fromLocal8Bit(process.readAllStandardOutput());
        }
        return true;
    }

    QProcess process;
    QString out;
    QString err;
};
