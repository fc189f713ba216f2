// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>

#include <chrono>

namespace asio = boost::asio;
using asio::ip::tcp;
using steadyClock = std::chrono::steady_clock;
