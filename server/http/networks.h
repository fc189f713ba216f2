// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <boost/asio/ip/address.hpp>

#include <optional>
#include <string_view>
#include <vector>

using ipAddress = boost::asio::ip::address;

/// A range of addresses.
struct ipNetwork {
    ipAddress first;
    int prefix = 0; ///< bits that all of its addresses have in common

    bool contains(const ipAddress &address) const;
};

/// Reads "10.0.0.0/8", "::1/128", or an address, which stands for itself alone. Nothing if it is
/// none, or has bits beyond its prefix.
std::optional<ipNetwork> parseNetwork(std::string_view text);

/// The address itself; an IPv4 address that is written as one of IPv6, as IPv4.
ipAddress plainAddress(const ipAddress &address);

/// Whom what @p client does is counted for: an IPv4 address, or the /64 network of an IPv6 one, as
/// that is the least that one customer gets.
ipAddress accountOf(const ipAddress &client);

/// Who sent a request that came from @p peer: the last address of @p forwardedFor, the last line of
/// that header, if the peer is one of @p trustedProxies and the line ends with an address; else the
/// peer.
ipAddress clientOf(const ipAddress &peer, std::string_view forwardedFor,
                   const std::vector<ipNetwork> &trustedProxies);

/// Whether one of @p networks contains @p address.
bool isIn(const ipAddress &address, const std::vector<ipNetwork> &networks);
