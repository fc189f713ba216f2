// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// What a request is answered with.
struct answer {
    int status = 200;
    QByteArray body;
    const char *contentType = "text/plain; charset=utf-8";
    const char *allow = nullptr; ///< the methods that the path has, where the method was wrong
    int retryAfter = 0;          ///< seconds after which it makes sense to ask again; 0 if not said
};

/// A sentence for the person or program that asked.
inline answer textAnswer(int status, const QString &line)
{
    answer made;
    made.status = status;
    made.body = line.toUtf8() + '\n';
    return made;
}

/// Sends an answer. May be called once, on any thread, when the connection has gone too.
using replier = std::function<void(const answer &)>;
