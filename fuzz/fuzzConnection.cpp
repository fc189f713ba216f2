// SPDX-License-Identifier: GPL-3.0-or-later

// A whole connection to the edge of the result database: any number of requests, sent in two pieces
// that are cut where the first byte says.

#include "server/http/edge.h"

#include <boost/asio/write.hpp>

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace
{

void expect(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

/// A server that answers every request with its path and the length of its body.
class server
{
public:
    server() : http(loop, {}, host()), port(http.listen("127.0.0.1", 0).value_or(0))
    {
        expect(port > 0);
    }

    /// All that the server says to @p first and @p second.
    std::string answers(std::string_view first, std::string_view second)
    {
        tcp::socket client(loop);
        client.connect({asio::ip::make_address("127.0.0.1"), static_cast<unsigned short>(port)});
        // Closed without a trace, or the system would run out of ports.
        client.set_option(tcp::socket::linger(true, 0));
        client.non_blocking(true);
        send(client, first);
        send(client, second);
        boost::system::error_code error;
        client.shutdown(tcp::socket::shutdown_send, error);
        std::string all;
        while (true) {
            loop.poll();
            std::array<char, 4096> part;
            all.append(part.data(), client.read_some(asio::buffer(part), error));
            if (error && error != asio::error::would_block)
                return all;
        }
    }

private:
    static connectionHost host()
    {
        connectionHost made;
        made.resources = {{"/form", resource::form}, {"/page", resource::page}};
        made.handle = [](const httpRequest &request, const replier &reply) {
            expect(request.path == "/form" || (request.path == "/page" && request.body.empty()));
            expect(request.body.size() <= maximumBody);
            reply(textAnswer(200, QString::fromStdString(request.path)));
        };
        return made;
    }

    void send(tcp::socket &client, std::string_view bytes)
    {
        boost::system::error_code error;
        while (!bytes.empty()) {
            bytes.remove_prefix(client.write_some(asio::buffer(bytes.data(), bytes.size()), error));
            if (error && error != asio::error::would_block)
                return;
            loop.poll();
        }
    }

    asio::io_context loop;
    edge http;
    int port;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static server one;
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char *>(data) + 1, size - 1);
    const std::size_t cut = bytes.size() * data[0] / 256;
    const std::string answers = one.answers(bytes.substr(0, cut), bytes.substr(cut));
    expect(answers.empty() || answers.starts_with("HTTP/1.1 "));
    return 0;
}
