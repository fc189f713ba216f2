// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <httplib.h>

#include <array>
#include <chrono>
#include <functional>
#include <string>

/// A connection on which each request has a limited size and a deadline by which it must be read
/// and answered. A time-out per read is not enough: a client that sends a byte now and then would
/// never exceed it.
class deadlineStream : public httplib::Stream
{
public:
    using clock = std::chrono::steady_clock;

    /// @p connected is not owned. Waiting ends early when @p isEnding says so.
    deadlineStream(socket_t connected, std::function<bool()> isEnding);

    /// Waits until the next request begins. False if none does by @p until, or if the client has
    /// closed the connection.
    bool waitForRequest(clock::time_point until);
    /// The request that begins now must end by @p until and may have at most @p bytes.
    void beginRequest(clock::time_point until, std::size_t bytes);

    /// Whether a request exceeded its time or size. What follows on the connection makes no sense
    /// then.
    bool isBroken() const { return broken; }

    bool is_readable() const override;
    bool is_writable() const override;
    ssize_t read(char *to, std::size_t size) override;
    ssize_t write(const char *from, std::size_t size) override;
    void get_remote_ip_and_port(std::string &ip, int &port) const override;
    void get_local_ip_and_port(std::string &ip, int &port) const override;
    socket_t socket() const override { return handle; }

private:
    /// Waits for @p events of the socket. False if there are none by @p until.
    bool poll(short events, clock::time_point until) const;
    bool fill();

    socket_t handle;
    std::function<bool()> isStopped;
    clock::time_point deadline = clock::now();
    std::size_t budget = 0;
    std::array<char, 4096> buffer;
    std::size_t next = 0;
    std::size_t end = 0;
    bool broken = false;
};
