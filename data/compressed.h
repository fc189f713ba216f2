// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/// Unpacks what qCompress has packed: four bytes of length, the most significant first, and a zlib
/// stream. Null if @p packed is something else, or if it holds, or only claims to hold, more than
/// @p maximumSize bytes. No more than twice that many are asked for on the way.
QByteArray uncompressed(const QByteArray &packed, qint64 maximumSize);
