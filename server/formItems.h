// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QMap>

#include <optional>

/// The items of a form-encoded body, decoded. One question mark in front is passed over, which some
/// clients send. Nothing if an item has no name or stands twice, or a percent sign is not followed
/// by two hex digits.
std::optional<QMap<QByteArray, QByteArray>> formItems(const QByteArray &body);
