// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Reads what the kernel says in small files. They may come from a test or from a driver with a
/// fault, so nothing is taken for granted: sizes are bounded, and what makes no sense is no answer.
namespace systemFile
{

/// The first @p limit bytes of @p file; empty if it cannot be read.
std::string head(const std::filesystem::path &file, std::size_t limit);

/// The words of a file of one line, without blanks at both ends. None if there are none, more than
/// 128 bytes, or anything but printable ASCII.
std::optional<std::string> line(const std::filesystem::path &file);

/// The whole number that is all of a file.
std::optional<long long> number(const std::filesystem::path &file);

/// Calls @p visit with each entry of @p directory whose name begins with @p prefix, in the order of
/// the names; a few thousand at most.
void forEach(const std::filesystem::path &directory, std::string_view prefix,
             const std::function<void(const std::filesystem::path &)> &visit);

/// @p text without blanks and ends of lines at both ends.
std::string_view trimmed(std::string_view text);

} // namespace systemFile
