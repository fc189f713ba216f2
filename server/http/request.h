// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/answer.h"
#include "server/http/asio.h"
#include "server/http/networks.h"

#include <atomic>
#include <functional>
#include <memory>
#include <string>

/// What a request turns out to be about, in a constant word; null as long as nobody knows. Whoever
/// handles the request may say it on any thread.
using requestTopic = std::atomic<const char *>;

/// A request that has been taken.
struct httpRequest {
    std::string path;
    std::string body;
    ipAddress client;
    std::shared_ptr<requestTopic> topic;
};

/// An answer that is being sent.
struct answeredRequest {
    const char *topic; ///< of the request; null if it has none, or was refused for its form
    int status;
    steadyClock::duration taken; ///< since the request's first byte
};

/// Answers a request through its replier, at once or later. Called on the thread of the loop, and
/// must not keep it waiting.
using requestHandler = std::function<void(httpRequest request, replier reply)>;
