// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/headRules.h"

#include <boost/beast/http/error.hpp>
#include <boost/beast/http/rfc7230.hpp>

#include <algorithm>
#include <charconv>

namespace
{

namespace beast = boost::beast;
namespace http = beast::http;

using verdict = std::optional<answer>;

verdict refuse(int status, const char *reason)
{
    return textAnswer(status, QString::fromLatin1(reason));
}

std::string_view valueOf(const requestHead &head, http::field name)
{
    const auto value = head[name];
    return {value.data(), value.size()};
}

/// The number that @p text consists of, if it is one.
std::optional<unsigned long long> number(std::string_view text)
{
    unsigned long long value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || end != text.data() + text.size())
        return std::nullopt;
    // More digits than a number has.
    return error == std::errc() ? value : std::numeric_limits<unsigned long long>::max();
}

/// Where one request ends must be said once and in one way.
verdict checkFraming(const requestHead &head)
{
    const auto lengths = head.count(http::field::content_length);
    if (head.count(http::field::transfer_encoding) > 0) {
        if (lengths > 0)
            return refuse(400, "a request has one length");
        const auto codings = valueOf(head, http::field::transfer_encoding);
        return beast::iequals({codings.data(), codings.size()}, "chunked")
                   ? refuse(411, "a request says its length")
                   : refuse(501, "a request is sent as it is");
    }
    if (lengths > 1 || (lengths == 1 && !number(valueOf(head, http::field::content_length))))
        return refuse(400, "a request has one length, a number");
    return std::nullopt;
}

verdict checkHost(const requestHead &head)
{
    const auto hosts = head.count(http::field::host);
    if (hosts > 1 || (hosts == 0 && head.version() >= 11))
        return refuse(400, "a request names one host");
    return std::nullopt;
}

verdict checkExpectation(const requestHead &head)
{
    const auto fields = head.count(http::field::expect);
    if (fields > 0 && (fields > 1 || !beast::iequals(head[http::field::expect], "100-continue")))
        return refuse(417, "there is nothing to expect but 100-continue");
    return std::nullopt;
}

verdict checkForm(const requestHead &head)
{
    const std::string_view type = valueOf(head, http::field::content_type);
    const std::string_view essence = type.substr(0, type.find_first_of("; \t"));
    if (head.count(http::field::content_type) > 1
        || (!type.empty()
            && !beast::iequals({essence.data(), essence.size()},
                               "application/x-www-form-urlencoded")))
        return refuse(415, "a form is sent as application/x-www-form-urlencoded");
    const auto length = number(valueOf(head, http::field::content_length));
    if (!length)
        return refuse(411, "a request says its length");
    if (*length > maximumBody)
        return refuse(413, "a request has at most 65536 bytes");
    return std::nullopt;
}

verdict checkPage(const requestHead &head)
{
    if (number(valueOf(head, http::field::content_length)).value_or(0) > 0)
        return refuse(400, "a page is asked for without a body");
    return std::nullopt;
}

verdict checkMethod(const requestHead &head, const resource &found)
{
    const bool isPage = found.use == resource::page;
    const http::verb method = head.method();
    if (isPage ? method == http::verb::get || method == http::verb::head
               : method == http::verb::post)
        return std::nullopt;
    verdict refused = refuse(405, "the method does not fit the path");
    refused->allow = isPage ? "GET, HEAD" : "POST";
    return refused;
}

verdict checkTarget(const requestHead &head, const std::vector<resource> &resources)
{
    const std::string_view target(head.target().data(), head.target().size());
    if (target.size() > maximumTarget)
        return refuse(414, "there is no path of this length");
    if (head.method() == http::verb::unknown)
        return refuse(501, "there is no such method");
    const std::string_view path = pathOf(target);
    const auto found = std::find_if(resources.begin(), resources.end(),
                                    [path](const resource &one) { return one.path == path; });
    if (found == resources.end())
        return refuse(404, "there is nothing here");
    if (verdict refused = checkMethod(head, *found))
        return refused;
    return found->use == resource::page ? checkPage(head) : checkForm(head);
}

/// Whether @p text is a version, and none of those that we speak.
bool isOtherVersion(std::string_view text)
{
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    return text.size() == 8 && text.substr(0, 5) == "HTTP/" && isDigit(text[5]) && text[6] == '.'
           && isDigit(text[7]) && text != "HTTP/1.1" && text != "HTTP/1.0";
}

} // namespace

std::string_view pathOf(std::string_view target)
{
    constexpr std::string_view scheme = "http://";
    if (beast::iequals({target.data(), std::min(target.size(), scheme.size())},
                       {scheme.data(), scheme.size()})) {
        const std::size_t slash = target.find('/', scheme.size());
        target = slash == std::string_view::npos ? "/" : target.substr(slash);
    }
    return target.empty() || target.front() != '/' ? std::string_view()
                                                   : target.substr(0, target.find('?'));
}

std::optional<answer> refusal(const requestHead &head, const std::vector<resource> &resources)
{
    if (verdict refused = checkFraming(head))
        return refused;
    if (verdict refused = checkHost(head))
        return refused;
    if (head.count(http::field::content_encoding) > 0)
        return refuse(415, "a request is sent as it is, not packed");
    if (verdict refused = checkExpectation(head))
        return refused;
    return checkTarget(head, resources);
}

answer unreadable(const boost::system::error_code &fault, std::string_view unread,
                  bool hasFirstLine)
{
    if (fault == http::error::header_limit || fault == http::error::buffer_overflow) {
        return hasFirstLine ? *refuse(431, "the head of a request has at most 16384 bytes")
                            : *refuse(414, "there is no path of this length");
    }
    const std::string_view line = unread.substr(0, unread.find("\r\n"));
    if (fault == http::error::bad_version && isOtherVersion(line.substr(line.rfind(' ') + 1)))
        return *refuse(505, "the version of HTTP is 1.1 or 1.0");
    return *refuse(400, "the request cannot be read");
}
