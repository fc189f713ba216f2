// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>

/// The body of a request to the result database: a question mark, then the items app, type and,
/// unless it is null, @p results (UTF-8), each percent-encoded but for letters, digits and "-._~".
QByteArray formBody(const QByteArray &type, const QByteArray &results);
