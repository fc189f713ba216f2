// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/connection.h"

#include "server/http/httpDate.h"

#include <boost/asio/post.hpp>
#include <boost/beast/http/write.hpp>

#include <array>
#include <limits>

namespace
{

namespace http = boost::beast::http;
using namespace std::chrono_literals;

/// Between two requests, and before the first.
constexpr auto longestSilence = 10s;
/// From its first byte, a request has so long to be read, to be worked on, and to be answered. The
/// programs wait for a version for 7 s; whoever is told before that the database does not answer
/// need not guess.
constexpr auto longestReading = 9s;
constexpr auto longestWork = 6s;
constexpr auto longestRequest = 10s;
constexpr auto longestClosing = 1s;
constexpr std::size_t readSize = 8 * 1024;

} // namespace

connection::connection(tcp::socket accepted, const ipAddress &from, connectionHost &common,
                       connectionTable &table)
    : guest(accountOf(from)),
      socket(std::move(accepted)),
      peer(from),
      host(common),
      others(table),
      timer(socket.get_executor())
{
}

void connection::start()
{
    others.enter(*this);
    waitForRequest();
}

void connection::giveWay()
{
    if (isGone)
        return;
    isGone = true;
    others.leave(*this);
    errorCode ignored;
    socket.close(ignored);
    timer.cancel();
    host.left();
}

bool connection::hasUnreadBytes() const
{
    errorCode error;
    return socket.available(error) > 0;
}

void connection::begin(activity next, steadyClock::time_point until)
{
    doing = next;
    others.begin(*this, next);
    const bool isSooner = until < deadline;
    deadline = until;
    if (!isTimerSet || isSooner)
        armTimer();
}

/// A deadline that moves on leaves the timer as it is: it looks again when it has run out.
void connection::armTimer()
{
    isTimerSet = true;
    timer.expires_at(deadline);
    timer.async_wait([self = shared_from_this()](const errorCode &error) {
        if (error || self->isGone)
            return;
        if (steadyClock::now() < self->deadline)
            self->armTimer();
        else
            self->expire();
    });
}

void connection::expire()
{
    isTimerSet = false;
    switch (doing) {
    case activity::reading: {
        // Answered by the reading that ends now: its buffer must stay as long as it goes on.
        isOverdue = true;
        errorCode ignored;
        socket.cancel(ignored);
        break;
    }
    case activity::working:
        reply(requests, textAnswer(503, QStringLiteral("the database does not answer; please try "
                                                       "again later")));
        break;
    default:
        giveWay();
    }
}

void connection::waitForRequest()
{
    begin(activity::idle, steadyClock::now() + longestSilence);
    if (buffer.size() > 0) {
        beginRequest();
        return;
    }
    buffer.shrink_to_fit();
    socket.async_wait(tcp::socket::wait_read, [self = shared_from_this()](const errorCode &error) {
        if (self->isGone)
            return;
        error ? self->giveWay() : self->beginRequest();
    });
}

void connection::beginRequest()
{
    const auto now = steadyClock::now();
    current = {now, now, 0};
    headBytes = 0;
    ++requests;
    topic.reset();
    begin(activity::reading, now + longestReading);
    parser.emplace();
    parser->header_limit(maximumHead);
    // The rules for heads tell, before the parser gets to the body.
    parser->body_limit(std::numeric_limits<std::uint64_t>::max());
    buffer.size() > 0 ? parse() : read();
}

void connection::read()
{
    socket.async_read_some(
        buffer.prepare(readSize),
        [self = shared_from_this()](const errorCode &error, std::size_t bytes) {
            if (self->isGone)
                return;
            if (self->isOverdue) {
                self->refuse(textAnswer(408, QStringLiteral("the request has taken too long")));
                return;
            }
            if (error) {
                self->giveWay();
                return;
            }
            self->buffer.commit(bytes);
            self->current.bytes += bytes;
            self->current.latest = steadyClock::now();
            self->parse();
        });
}

void connection::parse()
{
    while (!parser->is_done()) {
        const bool hadHead = parser->is_header_done();
        errorCode fault;
        const std::size_t taken = parser->put(buffer.data(), fault);
        buffer.consume(taken);
        // The parser's own limit is for a line, and for what comes at once.
        headBytes += hadHead ? 0 : taken;
        if (headBytes > maximumHead)
            fault = http::error::header_limit;
        if (fault == http::error::need_more) {
            read();
            return;
        }
        if (fault) {
            const auto left = buffer.data();
            refuse(unreadable(fault, {static_cast<const char *>(left.data()), left.size()},
                              !parser->get().target().empty()));
            return;
        }
        if (!hadHead && parser->is_header_done() && !takeHead())
            return;
        if (!parser->is_done() && buffer.size() == 0) {
            read();
            return;
        }
    }
    takeRequest();
}

bool connection::takeHead()
{
    const auto &head = parser->get();
    isHead = head.method() == http::verb::head;
    if (const std::optional<answer> refused = refusal(head, host.resources)) {
        refuse(*refused);
        return false;
    }
    isLast = !head.keep_alive() || head.version() < 11;
    // Whoever has sent the body already waits for nothing.
    if (head.count(http::field::expect) > 0 && head.version() >= 11 && !parser->is_done()
        && buffer.size() == 0)
        return sendContinue();
    return true;
}

/// Nothing else is being sent, so that so little never has to wait.
bool connection::sendContinue()
{
    static constexpr std::string_view goOn = "HTTP/1.1 100 Continue\r\n\r\n";
    errorCode error;
    const bool isSent =
        socket.write_some(asio::buffer(goOn.data(), goOn.size()), error) == goOn.size();
    if (!isSent)
        giveWay();
    return isSent;
}

void connection::takeRequest()
{
    auto &message = parser->get();
    std::string_view forwardedFor;
    const auto lines = message.equal_range("X-Forwarded-For");
    for (auto line = lines.first; line != lines.second; ++line)
        forwardedFor = {line->value().data(), line->value().size()};
    httpRequest request{std::string(pathOf({message.target().data(), message.target().size()})),
                        std::move(message.body()),
                        clientOf(peer, forwardedFor, host.trustedProxies),
                        topic = std::make_shared<requestTopic>(nullptr)};
    begin(activity::working, current.begun + longestWork);
    host.handle(std::move(request),
                [self = shared_from_this(), number = requests](const answer &given) {
                    asio::post(self->socket.get_executor(),
                               [self, number, given] { self->reply(number, given); });
                });
}

void connection::reply(unsigned request, const answer &given)
{
    // Too late: the connection has gone, or the request was answered when its time was up.
    if (isGone || doing != activity::working || request != requests)
        return;
    send(given);
}

void connection::refuse(const answer &given)
{
    isLast = true;
    send(given);
}

void connection::send(const answer &given)
{
    isLast = isLast || host.isEnding;
    parser.reset();
    body = given.body;
    response = responseMessage(http::int_to_status(static_cast<unsigned>(given.status)), 11);
    response.set(http::field::date, httpDate());
    response.set(http::field::content_type, given.contentType);
    if (given.allow)
        response.set(http::field::allow, given.allow);
    if (given.retryAfter > 0)
        response.set(http::field::retry_after, std::to_string(given.retryAfter));
    response.body() = {body.constData(), static_cast<std::size_t>(body.size())};
    response.keep_alive(!isLast);
    response.prepare_payload();
    serializer.emplace(response);
    serializer->split(isHead);
    const auto now = steadyClock::now();
    const auto begun = current.begun;
    host.answered({topic ? topic->load() : nullptr, given.status, now - begun});
    current = {now, now, 0};
    begin(activity::writing, std::max(begun + longestRequest, now));
    write();
}

void connection::write()
{
    const auto handler = [self = shared_from_this()](errorCode error, std::size_t bytes) {
        if (self->isGone)
            return;
        if (error) {
            self->giveWay();
            return;
        }
        self->current.bytes += bytes;
        self->current.latest = steadyClock::now();
        const bool isDone =
            self->isHead ? self->serializer->is_header_done() : self->serializer->is_done();
        if (!isDone)
            self->write();
        else if (self->isLast)
            self->close();
        else
            self->waitForRequest();
    };
    http::async_write_some(socket, *serializer, handler);
}

/// What the client goes on sending is thrown away for a moment: closing with unread bytes resets
/// the connection, and the client would lose the answer.
void connection::close()
{
    begin(activity::closing, steadyClock::now() + longestClosing);
    serializer.reset();
    body.clear();
    buffer = {};
    errorCode error;
    socket.shutdown(tcp::socket::shutdown_send, error);
    error ? giveWay() : discard();
}

void connection::discard()
{
    static std::array<char, 16 * 1024> waste; // of all connections: nobody reads it
    socket.async_read_some(asio::buffer(waste),
                           [self = shared_from_this()](const errorCode &error, std::size_t) {
                               if (self->isGone)
                                   return;
                               error ? self->giveWay() : self->discard();
                           });
}
