// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>

#include <optional>

/// The decoded items of a form-encoded body. A question mark in front, which the programs send, is
/// skipped. Nothing if an item has no name or appears twice, or if a percent sign is not followed
/// by two hex digits.
std::optional<QMap<QByteArray, QByteArray>> formItems(const QByteArray &body);
