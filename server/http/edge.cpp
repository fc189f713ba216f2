// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/edge.h"

#include <string>

namespace
{

/// Connections that nobody can give way to wait in the system's queue, and are looked at again.
constexpr auto pauseLength = std::chrono::milliseconds(50);

failure failureOf(const boost::system::error_code &error)
{
    return failure(QString::fromStdString(error.message()));
}

} // namespace

edge::edge(asio::io_context &runner, const edgeLimits &limits, connectionHost common)
    : loop(runner),
      table(static_cast<std::size_t>(limits.connections),
            static_cast<std::size_t>(limits.connectionsOfOne)),
      host(std::move(common)),
      acceptor(runner),
      moment(runner)
{
    host.left = [this] { hasLeft(); };
}

outcome<int> edge::listen(const std::string &address, int port)
{
    boost::system::error_code error;
    tcp::resolver resolver(loop);
    const auto found =
        resolver.resolve(address, std::to_string(port),
                         tcp::resolver::passive | tcp::resolver::numeric_service, error);
    if (error)
        return failureOf(error);
    const tcp::endpoint place = found.begin()->endpoint();
    acceptor.open(place.protocol(), error);
    if (!error)
        acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error)
        acceptor.bind(place, error);
    if (!error)
        acceptor.listen(tcp::acceptor::max_listen_connections, error);
    if (!error)
        acceptor.non_blocking(true, error);
    if (error)
        return failureOf(error);
    accept();
    return acceptor.local_endpoint().port();
}

void edge::end(std::function<void()> whenEmpty)
{
    host.isEnding = true;
    boost::system::error_code ignored;
    acceptor.close(ignored);
    moment.cancel();
    table.closeIdle();
    atTheEnd = std::move(whenEmpty);
    hasLeft();
}

void edge::hasLeft()
{
    if (atTheEnd && table.size() == 0)
        atTheEnd();
    else
        goOn();
}

/// Looks for room only when somebody is there: nobody gives way to a connection that never comes.
void edge::accept()
{
    acceptor.async_wait(tcp::acceptor::wait_read, [this](const boost::system::error_code &error) {
        if (error || !acceptor.is_open())
            return;
        takeNext() ? accept() : pause();
    });
}

bool edge::takeNext()
{
    if (!table.makeRoom(steadyClock::now()))
        return false;
    boost::system::error_code error;
    tcp::socket accepted = acceptor.accept(error);
    if (!error)
        welcome(std::move(accepted));
    // What else there is, lack of file handles or memory, passes.
    return !error || error == asio::error::would_block || error == asio::error::try_again
           || error == asio::error::connection_aborted;
}

void edge::welcome(tcp::socket accepted)
{
    boost::system::error_code error;
    const tcp::endpoint peer = accepted.remote_endpoint(error);
    if (error) // gone already
        return;
    const ipAddress from = plainAddress(peer.address());
    if (!isIn(from, host.trustedProxies) && !table.makeRoomOf(accountOf(from), steadyClock::now()))
        return;
    accepted.set_option(tcp::no_delay(true), error);
    accepted.non_blocking(true, error);
    std::make_shared<connection>(std::move(accepted), from, host, table)->start();
}

void edge::pause()
{
    isPaused = true;
    moment.expires_after(pauseLength);
    moment.async_wait([this](const boost::system::error_code &error) {
        if (!error)
            goOn();
    });
}

void edge::goOn()
{
    if (!isPaused || !acceptor.is_open())
        return;
    isPaused = false;
    takeNext() ? accept() : pause();
}
