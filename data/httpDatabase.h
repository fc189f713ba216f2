// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/onlineDatabase.h"

#include <QString>

#include <memory>

class QNetworkAccessManager;

/// The online result database behind HTTP.
///
/// A request waits in an event loop of its own: windows are repainted and may be closed meanwhile,
/// but keys and clicks are held back until it is over.
class httpDatabase : public onlineDatabase
{
public:
    /// How long a request waits for its reply, in milliseconds.
    struct timeOuts {
        int version = 7'000;
        int others = 30'000;
    };

    /// @p host as "name" or "name:port". Nothing is sent before the first request.
    explicit httpDatabase(const QString &host = defaultHost());
    httpDatabase(const QString &host, const timeOuts &limits);
    ~httpDatabase() override;

    /// Where this build looks for the database (FENNICK_RESULT_HOST).
    static QString defaultHost();

    bool request(int requested, QByteArray &data) override;

private:
    /// The body of the reply as it was received, or null for an error. After a time-out this is
    /// what has come so far, and no error.
    QByteArray post(const QByteArray &body, int timeOut, bool &ok);

    QString endpoint;
    timeOuts limit;
    std::unique_ptr<QNetworkAccessManager> network;
};
