// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>

/// The network of an address, as bytes: the first 24 bits of an IPv4 address, the first 48 of an
/// IPv6 one, which is about what one household or company has. IPv4 addresses in IPv6 notation are
/// IPv4. Empty if @p address is none.
QByteArray networkOf(const QString &address);

/// Tells the sources of one day apart without telling who they are: a keyed hash of @p network, in
/// hex. With the key, which is random and gone on the next day, nobody can find out from the hash
/// by trying all networks. Empty, which stands for an unknown source, if @p network is empty.
QByteArray sourceToken(const QByteArray &network, const QByteArray &dayKey);

/// The number of the UTC day of a time in milliseconds since 1970.
qint64 dayOf(qint64 time);

/// A new random key of 256 bits.
QByteArray newDayKey();
