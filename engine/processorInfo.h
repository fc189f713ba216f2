// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

/// What the platform says about its processor, raw and unedited. An empty optional means that the
/// platform has no such answer; a clock of 0 means that it has one, but could not read it.
struct processorInfo {
    std::optional<std::string> name; ///< UTF-8
    std::optional<std::uint32_t> megahertz;
};

/// Asks the platform: the registry on Windows, the file systems of the kernel on Linux.
/// @p root stands in front of every file that is read, so that a test can bring its own files; the
/// registry takes no notice of it. Never fails; what cannot be found stays empty.
processorInfo readProcessorInfo(const std::filesystem::path &root = "/");
