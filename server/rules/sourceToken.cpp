// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/sourceToken.h"

#include <QMessageAuthenticationCode>
#include <QRandomGenerator>

#include <array>
#include <optional>

#include <arpa/inet.h>

namespace
{

std::optional<in6_addr> ipv6Of(const QByteArray &address)
{
    in6_addr bytes{};
    return inet_pton(AF_INET6, address.constData(), &bytes) == 1 ? std::make_optional(bytes)
                                                                 : std::nullopt;
}

} // namespace

QByteArray networkOf(const QString &address)
{
    // An interface's name may stand behind a local address.
    const QString text = address.section(QLatin1Char('%'), 0, 0);
    const std::optional<in6_addr> ipv6 = ipv6Of(text.toLatin1());
    // One notation for both: 0:0:0:0:0:FFFF in front of the 32 bits of an IPv4 address.
    const std::optional<in6_addr> bytes = ipv6 ? ipv6 : ipv6Of("::ffff:" + text.toLatin1());
    if (!bytes)
        return {};
    const int length = IN6_IS_ADDR_V4MAPPED(&*bytes) ? 12 + 3 : 6;
    return QByteArray(reinterpret_cast<const char *>(bytes->s6_addr), length);
}

QByteArray sourceToken(const QByteArray &network, const QByteArray &dayKey)
{
    if (network.isEmpty())
        return {};
    return QMessageAuthenticationCode::hash(network, dayKey, QCryptographicHash::Sha256).toHex();
}

qint64 dayOf(qint64 time)
{
    constexpr qint64 length = 86'400'000;
    return time >= 0 ? time / length : (time + 1) / length - 1;
}

QByteArray newDayKey()
{
    std::array<quint32, 8> words{};
    QRandomGenerator::system()->fillRange(words.data(), static_cast<qsizetype>(words.size()));
    return QByteArray(reinterpret_cast<const char *>(words.data()), sizeof words);
}
