// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/edge.h"

#include <functional>
#include <string>

/// The page /metrics, on an address of its own, which has nothing else.
class metricsPage
{
public:
    /// @p text makes the page. @p loop must outlive this, and be run by one thread.
    metricsPage(asio::io_context &loop, std::function<std::string()> text);

    /// The port.
    outcome<int> listen(const std::string &address, int port) { return http.listen(address, port); }

private:
    edge http;
};
