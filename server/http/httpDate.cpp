// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/httpDate.h"

#include <QDateTime>
#include <QLocale>

std::string httpDate()
{
    // Formatting takes longer than all else that an answer needs; this thread has its own copy.
    thread_local qint64 second = 0;
    thread_local std::string text;
    const qint64 now = QDateTime::currentSecsSinceEpoch();
    if (now != second) {
        second = now;
        text = QLocale::c()
                   .toString(QDateTime::fromSecsSinceEpoch(now, Qt::UTC),
                             QStringLiteral("ddd, dd MMM yyyy HH:mm:ss 'GMT'"))
                   .toStdString();
    }
    return text;
}
