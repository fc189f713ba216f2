// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

#include <optional>

/// Decompresses what qCompress has compressed: four bytes of length, the most significant first,
/// and a zlib stream. Nothing if @p packed is something else, or if it holds, or only claims to
/// hold, more than @p maximumSize bytes. No more than twice that many are allocated.
std::optional<QByteArray> uncompressed(const QByteArray &packed, qint64 maximumSize);
