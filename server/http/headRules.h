// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "server/http/answer.h"

#include <boost/beast/http/fields.hpp>
#include <boost/beast/http/message.hpp>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using requestHead = boost::beast::http::header<true, boost::beast::http::fields>;

/// The body of a request, in bytes.
constexpr std::size_t maximumBody = 64 * 1024;
/// Its first line and its header fields.
constexpr std::size_t maximumHead = 16 * 1024;
/// The target in the first line.
constexpr std::size_t maximumTarget = 2 * 1024;

/// Something that can be asked for: a page is read by GET and HEAD, a form is sent by POST.
struct resource {
    enum kind { page, form };

    std::string path;
    kind use = page;
};

/// The path that @p target names, without a query, also where a whole URL is given. Empty if it
/// names none.
std::string_view pathOf(std::string_view target);

/// Why a request with this head is not taken, before any of its body has been looked at; nothing if
/// it is. Taken is what the resources need and nothing beside: whoever sends more, and a program
/// that reads along, might understand it in another way.
std::optional<answer> refusal(const requestHead &head, const std::vector<resource> &resources);

/// The answer to a head that cannot be read. @p fault is what the parser says, @p unread what it
/// has not taken; @p hasFirstLine says whether it has got that far.
answer unreadable(const boost::system::error_code &fault, std::string_view unread,
                  bool hasFirstLine);
