// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/http/networks.h"

#include <boost/asio/ip/network_v4.hpp>
#include <boost/asio/ip/network_v6.hpp>

#include <algorithm>
#include <charconv>
#include <string>

namespace
{

namespace ip = boost::asio::ip;

constexpr unsigned short customerPrefix = 64;

std::optional<ipAddress> parseAddress(std::string_view text)
{
    boost::system::error_code error;
    const ipAddress address = ip::make_address(std::string(text), error);
    if (error)
        return std::nullopt;
    return plainAddress(address);
}

ipAddress firstOf(const ipAddress &address, int prefix)
{
    if (address.is_v4())
        return ip::network_v4(address.to_v4(), static_cast<unsigned short>(prefix)).network();
    return ip::network_v6(address.to_v6(), static_cast<unsigned short>(prefix)).network();
}

std::string_view trimmed(std::string_view text)
{
    constexpr std::string_view blanks = " \t";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

} // namespace

bool ipNetwork::contains(const ipAddress &address) const
{
    const ipAddress plain = plainAddress(address);
    return plain.is_v4() == first.is_v4() && firstOf(plain, prefix) == first;
}

std::optional<ipNetwork> parseNetwork(std::string_view text)
{
    const std::size_t slash = text.find('/');
    const auto address = parseAddress(text.substr(0, slash));
    if (!address)
        return std::nullopt;
    const int longest = address->is_v4() ? 32 : 128;
    if (slash == std::string_view::npos)
        return ipNetwork{*address, longest};
    const std::string_view number = text.substr(slash + 1);
    int prefix = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), prefix);
    if (error != std::errc() || end != number.data() + number.size() || prefix < 0
        || prefix > longest || firstOf(*address, prefix) != *address)
        return std::nullopt;
    return ipNetwork{*address, prefix};
}

ipAddress plainAddress(const ipAddress &address)
{
    if (address.is_v4() || !address.to_v6().is_v4_mapped())
        return address;
    return ip::make_address_v4(ip::v4_mapped, address.to_v6());
}

ipAddress accountOf(const ipAddress &client)
{
    const ipAddress plain = plainAddress(client);
    return plain.is_v4() ? plain : firstOf(plain, customerPrefix);
}

ipAddress clientOf(const ipAddress &peer, std::string_view forwardedFor,
                   const std::vector<ipNetwork> &trustedProxies)
{
    if (!isIn(peer, trustedProxies))
        return plainAddress(peer);
    const std::size_t comma = forwardedFor.rfind(',');
    const std::string_view last =
        forwardedFor.substr(comma == std::string_view::npos ? 0 : comma + 1);
    return parseAddress(trimmed(last)).value_or(plainAddress(peer));
}

bool isIn(const ipAddress &address, const std::vector<ipNetwork> &networks)
{
    return std::any_of(networks.begin(), networks.end(),
                       [&address](const ipNetwork &network) { return network.contains(address); });
}
