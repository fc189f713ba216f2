// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/deadlineStream.h"

#include <algorithm>
#include <cstring>

#include <arpa/inet.h>
#include <poll.h>
#include <sys/socket.h>

namespace
{

void addressText(const sockaddr_storage &address, std::string &ip, int &port)
{
    std::array<char, INET6_ADDRSTRLEN> text{};
    if (address.ss_family == AF_INET) {
        const auto *v4 = reinterpret_cast<const sockaddr_in *>(&address);
        inet_ntop(AF_INET, &v4->sin_addr, text.data(), text.size());
        port = ntohs(v4->sin_port);
    } else if (address.ss_family == AF_INET6) {
        const auto *v6 = reinterpret_cast<const sockaddr_in6 *>(&address);
        inet_ntop(AF_INET6, &v6->sin6_addr, text.data(), text.size());
        port = ntohs(v6->sin6_port);
    }
    ip = text.data();
}

} // namespace

deadlineStream::deadlineStream(socket_t connected, std::function<bool()> isEnding)
    : handle(connected),
      isStopped(std::move(isEnding))
{
}

bool deadlineStream::poll(short events, clock::time_point until) const
{
    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(until - clock::now()).count();
    pollfd wanted{handle, events, 0};
    return left > 0 && ::poll(&wanted, 1, static_cast<int>(left)) > 0
           && (wanted.revents & (events | POLLHUP));
}

bool deadlineStream::waitForRequest(clock::time_point until)
{
    constexpr auto slice = std::chrono::milliseconds(100);
    while (next == end) {
        const clock::time_point now = clock::now();
        if (now >= until || isStopped())
            return false;
        if (poll(POLLIN, std::min(until, now + slice))) {
            deadline = until;
            budget = buffer.size();
            return fill();
        }
    }
    return true;
}

void deadlineStream::beginRequest(clock::time_point until, std::size_t bytes)
{
    deadline = until;
    budget = bytes;
}

bool deadlineStream::fill()
{
    const std::size_t size = std::min(budget, buffer.size());
    if (size == 0 || !poll(POLLIN, deadline))
        return false;
    const ssize_t received = ::recv(handle, buffer.data(), size, MSG_DONTWAIT);
    if (received <= 0)
        return false;
    next = 0;
    end = static_cast<std::size_t>(received);
    budget -= end;
    return true;
}

bool deadlineStream::is_readable() const
{
    return next < end || poll(POLLIN, deadline);
}

bool deadlineStream::is_writable() const
{
    return poll(POLLOUT, deadline);
}

ssize_t deadlineStream::read(char *to, std::size_t size)
{
    if (next == end && !fill()) {
        broken = true;
        return -1;
    }
    const std::size_t count = std::min(size, end - next);
    std::memcpy(to, buffer.data() + next, count);
    next += count;
    return static_cast<ssize_t>(count);
}

ssize_t deadlineStream::write(const char *from, std::size_t size)
{
    const ssize_t sent =
        poll(POLLOUT, deadline) ? ::send(handle, from, size, MSG_NOSIGNAL | MSG_DONTWAIT) : -1;
    broken = broken || sent < 0;
    return sent;
}

void deadlineStream::get_remote_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getpeername(handle, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        addressText(address, ip, port);
}

void deadlineStream::get_local_ip_and_port(std::string &ip, int &port) const
{
    sockaddr_storage address{};
    socklen_t size = sizeof address;
    if (getsockname(handle, reinterpret_cast<sockaddr *>(&address), &size) == 0)
        addressText(address, ip, port);
}
