// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QFile>

/// Tells by how much this process has grown, at its largest, since the object was made. Only Linux
/// lets a process forget its former peak.
class peakMemory
{
public:
    peakMemory()
    {
        QFile reset(QStringLiteral("/proc/self/clear_refs"));
        isKnown = reset.open(QIODevice::WriteOnly | QIODevice::Unbuffered) && reset.write("5") == 1;
        start = peak();
        isKnown = isKnown && start > 0;
    }

    bool isAvailable() const { return isKnown; }
    qint64 growth() const { return peak() - start; }

private:
    static qint64 peak()
    {
        QFile status(QStringLiteral("/proc/self/status"));
        if (!status.open(QIODevice::ReadOnly))
            return 0;
        const QList<QByteArray> lines = status.readAll().split('\n');
        for (const QByteArray &line : lines) {
            if (line.startsWith("VmHWM:"))
                return line.mid(6).trimmed().split(' ').first().toLongLong() * 1024;
        }
        return 0;
    }

    bool isKnown = false;
    qint64 start = 0;
};
