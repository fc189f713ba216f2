// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

/// @p value without its fraction, wrapped to 32 bits: negative values become large ones. It must
/// fit a signed 64-bit integer.
constexpr quint32 truncateToWord(double value)
{
    return static_cast<quint32>(static_cast<qint64>(value));
}
