// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/metricsPage.h"

namespace
{

/// Few ask, and none of them is a stranger.
constexpr edgeLimits fewConnections = {16, 16};

connectionHost hostOf(std::function<std::string()> text)
{
    connectionHost host;
    host.resources = {{"/metrics", resource::page}};
    host.handle = [text = std::move(text)](const httpRequest &, const replier &reply) {
        answer page;
        page.body = QByteArray::fromStdString(text());
        page.contentType = "text/plain; version=0.0.4; charset=utf-8";
        reply(page);
    };
    return host;
}

} // namespace

metricsPage::metricsPage(asio::io_context &loop, std::function<std::string()> text)
    : http(loop, fewConnections, hostOf(std::move(text)))
{
}
