// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/deadlineStream.h"

#include <atomic>

/// A web server that no client can keep busy: each request has a deadline and a size, the
/// connections have a number, and with many of them open the deadlines are short.
class boundedServer : public httplib::Server
{
public:
    /// The body of a request, in bytes.
    static constexpr std::size_t maximumBody = 64 * 1024;
    /// Its first line and its headers.
    static constexpr std::size_t maximumHead = 16 * 1024;

    explicit boundedServer(int mostConnections);

    /// Binds to @p port of @p address, or to a free one for 0. The port, or -1.
    int bind(const std::string &address, int port);
    /// Serves until stop() is called, then finishes what is in flight.
    bool serve();
    /// Ends serve(), also one that has been called but does not accept yet.
    void end();

private:
    bool process_and_close_socket(socket_t sock) override;
    void serveConnection(socket_t sock);
    /// The library's way to read a request and answer it, whatever its version wants to know.
    /// False if that failed.
    template <typename connection>
    bool answerRequest(connection &stream, bool isLast, bool &isClosed,
                       const std::function<void(httplib::Request &)> &prepare);
    /// Whether so many connections are open that deadlines are short.
    bool isCrowded() const;

    int limit;
    std::atomic<int> connections = 0;
};
