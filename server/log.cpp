// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/log.h"

#include <QDateTime>

#include <cstdio>

void writeLog(const QString &text)
{
    const QString line =
        QStringLiteral("%1 %2\n").arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODate), text);
    std::fputs(line.toUtf8().constData(), stderr);
}
