// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QPair>
#include <QVector>

/// A form in the way the result database reads it: a question mark, then the items (UTF-8) in their
/// order as key=value, joined by ampersands. In the values, all bytes but letters, digits and
/// "-._~" are percent-encoded.
QByteArray formBody(const QVector<QPair<QByteArray, QByteArray>> &items);
