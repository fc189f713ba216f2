// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/boundedServer.h"

#include "server/growingPool.h"

#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace
{

using namespace std::chrono_literals;

/// How long a request may take, and how long a connection may be idle between two of them.
struct timeOuts {
    std::chrono::milliseconds request;
    std::chrono::milliseconds idle;
};

constexpr timeOuts usualTimeOuts = {10s, 10s};
/// While many connections are open, an idle one gives way at once.
constexpr timeOuts crowdedTimeOuts = {1s, 100ms};
constexpr int requestsPerConnection = 1'000;

/// The length in the head of @p request, or -1 if there is none, or none that makes sense.
long long bodyLength(const httplib::Request &request)
{
    const std::string text = request.get_header_value("Content-Length");
    if (text.empty() || text.size() > 15
        || text.find_first_not_of("0123456789") != std::string::npos)
        return -1;
    return std::stoll(text);
}

/// Whether the body of @p request has a length that is allowed.
bool isBounded(const httplib::Request &request)
{
    const bool hasLength = request.has_header("Content-Length");
    if (!hasLength)
        return !request.has_header("Transfer-Encoding");
    const long long length = bodyLength(request);
    return length >= 0 && length <= static_cast<long long>(boundedServer::maximumBody);
}

void refuseBody(httplib::Response &response)
{
    response.status = 413;
    response.set_content("a request has at most 65536 bytes, and says how many\n", "text/plain");
}

/// Closes a connection so that the client can still read the answer. For a moment what it goes on
/// sending is read and thrown away: closing with unread data resets the connection, and the client
/// would lose the answer.
void closeGently(socket_t sock)
{
    ::shutdown(sock, SHUT_WR);
    std::array<char, 4096> waste;
    timeval moment{0, 200'000};
    setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &moment, sizeof moment);
    for (int i = 0; i < 64 && ::recv(sock, waste.data(), waste.size(), 0) > 0; ++i) {
    }
    ::close(sock);
}

} // namespace

boundedServer::boundedServer(int mostConnections) : limit(mostConnections)
{
    new_task_queue = [this] { return new growingPool(limit); };
    set_pre_routing_handler([](const httplib::Request &request, httplib::Response &response) {
        if (isBounded(request))
            return HandlerResponse::Unhandled;
        refuseBody(response);
        return HandlerResponse::Handled;
    });
    set_expect_100_continue_handler([](const httplib::Request &request, httplib::Response &) {
        return isBounded(request) ? 100 : 413;
    });
    set_tcp_nodelay(true);
    set_keep_alive_max_count(requestsPerConnection);
}

int boundedServer::bind(const std::string &address, int port)
{
    // Without SO_REUSEPORT, which the library sets: a second server on the port must fail, not
    // share its connections.
    set_socket_options([](socket_t sock) {
        const int yes = 1;
        setsockopt(sock, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    });
    const int bound = port == 0                     ? bind_to_any_port(address)
                      : bind_to_port(address, port) ? port
                                                    : -1;
    // The library's backlog is five connections; more at once would wait for a second.
    if (bound > 0)
        ::listen(svr_sock_, SOMAXCONN);
    return bound;
}

bool boundedServer::serve()
{
    return listen_after_bind();
}

void boundedServer::end()
{
    // The library ignores a stop that comes before it accepts connections.
    constexpr auto longest = 5s;
    const auto start = deadlineStream::clock::now();
    while (!is_running() && deadlineStream::clock::now() - start < longest)
        std::this_thread::sleep_for(5ms);
    stop();
}

bool boundedServer::isCrowded() const
{
    return connections > limit / 2;
}

bool boundedServer::process_and_close_socket(socket_t sock)
{
    ++connections;
    serveConnection(sock);
    closeGently(sock);
    --connections;
    return true;
}

template <typename connection>
bool boundedServer::answerRequest(connection &stream, bool isLast, bool &isClosed,
                                  const std::function<void(httplib::Request &)> &prepare)
{
    if constexpr (requires { process_request(stream, isLast, isClosed, prepare); }) {
        return process_request(stream, isLast, isClosed, prepare);
    } else {
        // From 0.18 on the addresses are arguments.
        std::string remote, local;
        int remotePort = 0, localPort = 0;
        stream.get_remote_ip_and_port(remote, remotePort);
        stream.get_local_ip_and_port(local, localPort);
        return process_request(stream, remote, remotePort, local, localPort, isLast, isClosed,
                               prepare);
    }
}

void boundedServer::serveConnection(socket_t sock)
{
    deadlineStream stream(sock, [this] { return svr_sock_ == INVALID_SOCKET; });
    for (int left = requestsPerConnection; left > 0; --left) {
        const auto idleTimeOut = (isCrowded() ? crowdedTimeOuts : usualTimeOuts).idle;
        if (!stream.waitForRequest(deadlineStream::clock::now() + idleTimeOut))
            return;
        const auto requestTimeOut = (isCrowded() ? crowdedTimeOuts : usualTimeOuts).request;
        stream.beginRequest(deadlineStream::clock::now() + requestTimeOut,
                            maximumHead + maximumBody);
        bool isClosed = false;
        bool isUnread = false;
        const bool isDone =
            answerRequest(stream, left == 1, isClosed, [&isUnread](httplib::Request &request) {
                isUnread = !isBounded(request);
                if (isUnread) {
                    request.headers.erase("Connection");
                    request.set_header("Connection", "close");
                }
                // Compressing an answer of four digits takes longer than sending it.
                request.headers.erase("Accept-Encoding");
                // A small request for a thousand ranges would be answered with as many lists.
                request.ranges.clear();
            });
        if (!isDone || isClosed || isUnread || stream.isBroken())
            return;
    }
}
