// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/pinning.h"

std::vector<int> allowedProcessors()
{
    return {};
}

std::optional<int> fastestProcessor(const std::vector<int> &, const std::filesystem::path &)
{
    return std::nullopt;
}

pinnedThread::pinnedThread(int)
    : pinned(failure(QStringLiteral("threads cannot be kept on one processor on this system")))
{
}

pinnedThread::~pinnedThread() = default;
