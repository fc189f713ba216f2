// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>

#include <tl/expected.hpp>

/// A value, or a sentence that tells a person why there is none. It starts with a lower-case letter
/// and ends without an end of line, so that a program's name fits before it.
template <typename Value> using outcome = tl::expected<Value, QString>;

/// The sentence.
using failure = tl::unexpected<QString>;
