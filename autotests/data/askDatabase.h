// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/httpDatabase.h"
#include "support/fakeServer.h"

#include <QElapsedTimer>

Q_DECLARE_METATYPE(fakeServer::answer)

inline constexpr int shortTime = 200;
/// For what must end by itself, long before.
inline constexpr int longTime = 60'000;

inline const QByteArray list = "<Fennick><bench machineName=\"Online\"/></Fennick>";

/// What a request comes to, and how long it took.
struct outcome {
    bool ok = false;
    QByteArray data;
    QString refusal;
    qint64 ms = 0;
};

inline outcome ask(const QString &server, int requested, int timeOut, const QByteArray &data = "in")
{
    httpDatabase database(server, {timeOut, timeOut});
    outcome result;
    result.data = data;
    QElapsedTimer timer;
    timer.start();
    result.ok = database.request(requested, result.data);
    result.ms = timer.elapsed();
    result.refusal = database.refusal();
    return result;
}

inline outcome ask(const fakeServer &server, int requested, int timeOut,
                   const QByteArray &data = "in")
{
    return ask(server.host(), requested, timeOut, data);
}
