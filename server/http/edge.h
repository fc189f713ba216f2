// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"
#include "server/http/connection.h"

/// How many connections a server takes.
struct edgeLimits {
    int connections = 1024;
    int connectionsOfOne = 64; ///< of one address, unless it is that of a trusted proxy
};

/// Where the internet begins: accepts connections and hands over the requests that come on them.
///
/// All of it happens on the one thread that runs the loop, and no connection has a thread. What
/// takes time is done elsewhere: the handler returns at once and its reply comes later.
class edge
{
public:
    /// @p runner must outlive it, and be run by one thread.
    edge(asio::io_context &runner, const edgeLimits &limits, connectionHost common);

    /// Accepts connections on @p port of @p address, or on a free port for 0. The port.
    outcome<int> listen(const std::string &address, int port);
    /// Accepts no more, and closes each connection when its request has been answered. Calls @p
    /// whenEmpty when the last one is closed.
    void end(std::function<void()> whenEmpty);

    const connectionTable &connections() const { return table; }

private:
    void accept();
    /// Takes a connection that has come. False if there is no room for it now.
    bool takeNext();
    void welcome(tcp::socket accepted);
    /// Goes on accepting when there is room, or in a moment.
    void pause();
    void hasLeft();
    void goOn();

    asio::io_context &loop;
    connectionTable table;
    connectionHost host;
    tcp::acceptor acceptor;
    asio::steady_timer moment;
    bool isPaused = false;
    std::function<void()> atTheEnd;
};
