// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <optional>
#include <string>

/// The kind of virtual machine that the files below @p root say this is, such as "VMware", or
/// "unknown" where they say that it is one, but not which. A container shares the kernel and the
/// processor of its host, so it is none, unless its host is.
std::optional<std::string> readVirtualMachine(const std::filesystem::path &root);
