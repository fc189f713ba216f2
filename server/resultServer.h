// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/boundedServer.h"
#include "server/rateLimit.h"
#include "server/storeThreads.h"

#include <QByteArray>

struct serverOptions {
    databaseAddress database;
    int uploads = 30; ///< of one address in a period; 0 for no limit
    std::chrono::seconds period{600};
    bool isBehindProxy = false; ///< the client is the last address of X-Forwarded-For
    int connections = 1024;     ///< the most at a time
};

/// An answer to a request.
struct answer {
    int status = 200;
    QByteArray body;
    bool isText = true;
};

/// The endpoint of the result database.
class resultServer
{
public:
    explicit resultServer(const serverOptions &wanted);

    /// The port, or -1 if it cannot be bound.
    int bind(const std::string &address, int port) { return http.bind(address, port); }
    /// Serves until stop() is called from another thread.
    bool serve() { return http.serve(); }
    void stop() { http.end(); }

    /// The answer to a POST of @p body from @p address.
    answer respond(const QByteArray &body, const std::string &address);

private:
    void addRoutes();
    answer version();
    answer list(bool isBeta);
    answer upload(const QByteArray &xml, const std::string &address);
    answer health();
    std::string clientOf(const httplib::Request &request) const;

    serverOptions options;
    storeThreads store;
    rateLimit uploadLimit;
    QByteArray builtInList;
    boundedServer http;
};
