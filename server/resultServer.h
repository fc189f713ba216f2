// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/edge.h"
#include "server/rateLimit.h"
#include "server/serverMetrics.h"
#include "server/storeThreads.h"

#include <boost/asio/thread_pool.hpp>

#include <QByteArray>

#include <atomic>

struct serverOptions {
    databaseAddress database;
    int uploads = 30; ///< of one address in a period; 0 for no limit
    std::chrono::seconds uploadPeriod{600};
    int reads = 200; ///< likewise
    std::chrono::seconds readPeriod{10};
    std::vector<ipNetwork> trustedProxies;
    edgeLimits limits;
};

/// The endpoint of the result database.
class resultServer
{
public:
    /// @p loop must outlive it, and be run by one thread.
    resultServer(asio::io_context &loop, const serverOptions &wanted);
    resultServer(const resultServer &) = delete;
    resultServer &operator=(const resultServer &) = delete;
    ~resultServer();

    /// The port.
    outcome<int> listen(const std::string &address, int port) { return http.listen(address, port); }
    /// Takes no more connections. Calls @p whenDone when the requests in progress are answered.
    void end(std::function<void()> whenDone) { http.end(std::move(whenDone)); }
    /// To be called when the loop has ended. False if the database hangs: then some threads do too.
    bool finish(std::chrono::milliseconds longest);

    /// What has happened so far, for Prometheus. To be called on the thread of the loop. The
    /// numbers of uploads are at most a minute older than the look before this one.
    std::string metricsText();

private:
    connectionHost makeHost();
    void take(const httpRequest &request, const replier &reply);
    void health(bool isForWriting, const replier &reply);
    void form(const httpRequest &request, const replier &reply);
    void version(const replier &reply);
    void list(bool isBeta, const replier &reply);
    void upload(const QByteArray &xml, const ipAddress &client, const replier &reply);
    /// Has @p work done by another thread than that of the loop. False if too much is waiting.
    bool doElsewhere(std::function<void()> work);
    /// Has the uploads counted, unless that was a moment ago.
    void countUploads();

    serverOptions options;
    serverMetrics metrics;
    std::optional<steadyClock::time_point> uploadsCounted;
    rateLimit uploadLimit;
    rateLimit readLimit;
    QByteArray builtInList;
    storeThreads store;
    std::atomic<int> backlog = 0;
    asio::thread_pool workers;
    edge http;
};
