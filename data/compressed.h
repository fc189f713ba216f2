// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/// Unpacks what qCompress has packed: four bytes of length, the most significant first, and a zlib
/// stream. Null if @p packed is something else, or holds more than @p maximumSize bytes, which is
/// found out before any memory is asked for.
QByteArray uncompressed(const QByteArray &packed, qint64 maximumSize);
