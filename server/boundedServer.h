// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/deadlineStream.h"

#include <atomic>

/// A web server that no client can keep busy: requests are limited in time and size, connections in
/// number, and while many connections are open the time-outs are short.
class boundedServer : public httplib::Server
{
public:
    /// The body of a request, in bytes.
    static constexpr std::size_t maximumBody = 64 * 1024;
    /// Its first line and its headers.
    static constexpr std::size_t maximumHead = 16 * 1024;

    explicit boundedServer(int mostConnections);

    /// Binds to @p port of @p address, or to a free port for 0. The port, or -1.
    int bind(const std::string &address, int port);
    /// Serves until end() is called, then finishes the requests that it is reading or answering.
    bool serve();
    /// Ends serve(), even if it has only just been called and accepts no connections yet.
    void end();

private:
    bool process_and_close_socket(socket_t sock) override;
    void serveConnection(socket_t sock);
    /// Has the library read and answer a request, with the arguments that its version takes. False
    /// if that failed.
    template <typename connection>
    bool answerRequest(connection &stream, bool isLast, bool &isClosed,
                       const std::function<void(httplib::Request &)> &prepare);
    /// Whether so many connections are open that time-outs are short.
    bool isCrowded() const;

    int limit;
    std::atomic<int> connections = 0;
};
