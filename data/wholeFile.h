// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/outcome.h"

#include <QByteArray>
#include <QIODevice>

/// Replaces the file at @p path by one with @p content, or makes it, or leaves everything as it is
/// and says why. @p form is QIODevice::Text for a text with the system's line ends.
outcome<void> writeWholeFile(const QString &path, const QByteArray &content,
                             QIODevice::OpenMode form = {});

/// The content of the file at @p path, which may be of @p longest bytes.
outcome<QByteArray> readWholeFile(const QString &path, qint64 longest);
