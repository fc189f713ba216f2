// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/onlineDatabase.h"

#include <QString>

#include <memory>
#include <optional>

class QNetworkAccessManager;

/// The online result database behind HTTP, one POST per request.
///
/// Where it is asked for, the way is TLS, and the server's certificate must be one that the system
/// trusts, for this host. Redirects are not followed.
///
/// A request waits in an event loop of its own: windows are repainted meanwhile, but keys, clicks
/// and the user's closing of a window are held back until it is over.
class httpDatabase : public onlineDatabase
{
public:
    /// How long a request waits, in milliseconds.
    struct timeOuts {
        int version = 7000;
        int others = 30000;
    };

    /// @p server as "name" or "name:port", or "https://" and one of both for TLS. Nothing is sent
    /// before the first request.
    explicit httpDatabase(const QString &server = defaultHost());
    httpDatabase(const QString &server, const timeOuts &limits);
    ~httpDatabase() override;

    /// Where this build looks for the database (FENNICK_RESULT_HOST).
    static QString defaultHost();
    /// Whether @p text is a host, with or without a port and "https://", and nothing else.
    static bool isServer(const QString &text);

    bool request(int requested, QByteArray &data) override;
    /// Of a server whose answer is plain text; a page for a browser is no reason. If the server is
    /// not trusted, why not.
    QString refusal() const override { return refused; }

private:
    /// The reply; nothing after an error, or if it is too long. A time-out is no error: the reply
    /// is then what has come so far.
    std::optional<QByteArray> post(const QByteArray &body, int timeOut);

    QString endpoint;
    timeOuts limit;
    QString refused;
    /// Lives longer than a request: to end its thread takes a wait where a server never finishes
    /// its header.
    std::unique_ptr<QNetworkAccessManager> network;
};
