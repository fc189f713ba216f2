// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/asio.h"
#include "server/http/connectionTable.h"
#include "server/http/headRules.h"
#include "server/http/request.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/span.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/serializer.hpp>
#include <boost/beast/http/span_body.hpp>
#include <boost/beast/http/string_body.hpp>

#include <functional>
#include <memory>
#include <optional>

/// What the connections of a server have in common.
struct connectionHost {
    std::vector<resource> resources;
    std::vector<ipNetwork> trustedProxies;
    requestHandler handle;
    /// Called for each answer, on the thread of the loop.
    std::function<void(const answeredRequest &)> answered = [](const answeredRequest &) {};
    /// Called when a connection is gone.
    std::function<void()> left = [] {};
    bool isEnding = false; ///< whether each request is the last one of its connection
};

/// A connection: reads requests, has them answered, and closes so that the client gets to read what
/// was last said. It lives as long as something is to be done, on the one thread of its loop.
class connection : public guest, public std::enable_shared_from_this<connection>
{
public:
    /// @p common and @p table must live as long as the connection is in the table.
    connection(tcp::socket accepted, const ipAddress &from, connectionHost &common,
               connectionTable &table);

    void start();
    void giveWay() override;
    bool hasUnreadBytes() const override;

private:
    using errorCode = boost::system::error_code;
    using requestParser = boost::beast::http::request_parser<boost::beast::http::string_body>;
    using responseBody = boost::beast::http::span_body<const char>;
    using responseMessage = boost::beast::http::response<responseBody>;

    void waitForRequest();
    void beginRequest();
    void read();
    /// Has the parser take what has been read.
    void parse();
    /// The head is there. False if that was the end of it.
    bool takeHead();
    void takeRequest();
    bool sendContinue();
    void reply(unsigned request, const answer &given);
    /// Sends @p given as the last answer.
    void refuse(const answer &given);
    void send(const answer &given);
    void write();
    void close();
    void discard();

    void begin(activity next, steadyClock::time_point until);
    void armTimer();
    void expire();

    tcp::socket socket;
    ipAddress peer;
    connectionHost &host;
    connectionTable &others;
    asio::steady_timer timer;
    steadyClock::time_point deadline;
    activity doing = activity::idle;
    bool isTimerSet = false;
    bool isGone = false;
    bool isOverdue = false; ///< whether the request has not come in time
    bool isLast = false;    ///< whether the connection is closed after this answer
    bool isHead = false;    ///< whether the answer is sent without its body
    unsigned requests = 0;
    std::size_t headBytes = 0; ///< of the request, as far as they have been taken
    boost::beast::flat_buffer buffer;
    std::optional<requestParser> parser;
    std::shared_ptr<requestTopic> topic; ///< of the request that has been taken
    QByteArray body;                     ///< of the answer, which the response shows
    responseMessage response;
    std::optional<boost::beast::http::response_serializer<responseBody>> serializer;
};
