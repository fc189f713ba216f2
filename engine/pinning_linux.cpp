// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/pinning.h"

#include "engine/systemFile.h"

#include <algorithm>
#include <cerrno>
#include <sched.h>
#include <string>
#include <system_error>

namespace
{

/// As many as any kernel is built for.
constexpr int mostProcessors = 8192;

struct processorMask {
    cpu_set_t words[mostProcessors / CPU_SETSIZE] = {};
};

/// Lets the calling thread run on @p processors alone.
bool allow(const std::vector<int> &processors)
{
    processorMask mask;
    for (const int processor : processors)
        CPU_SET_S(static_cast<std::size_t>(processor), sizeof mask, mask.words);
    return sched_setaffinity(0, sizeof mask, mask.words) == 0;
}

/// A failure that @p error, a number of the system's, stands for.
failure cannotPin(int processor, int error)
{
    const std::string reason = std::generic_category().message(error);
    return failure(QStringLiteral("the thread cannot be kept on processor %1: %2")
                       .arg(processor)
                       .arg(QString::fromLocal8Bit(reason.c_str())));
}

} // namespace

std::vector<int> allowedProcessors()
{
    processorMask mask;
    std::vector<int> allowed;
    if (sched_getaffinity(0, sizeof mask, mask.words) != 0)
        return allowed;
    for (int processor = 0; processor < mostProcessors; ++processor) {
        if (CPU_ISSET_S(static_cast<std::size_t>(processor), sizeof mask, mask.words))
            allowed.push_back(processor);
    }
    return allowed;
}

std::optional<int> fastestProcessor(const std::vector<int> &allowed,
                                    const std::filesystem::path &root)
{
    std::optional<int> fastest;
    long long highest = 0;
    for (const int processor : allowed) {
        const auto file = root / "sys/devices/system/cpu" / ("cpu" + std::to_string(processor))
                          / "cpufreq/cpuinfo_max_freq";
        const long long kilohertz = std::max(systemFile::number(file).value_or(0), 0LL);
        if (!fastest || kilohertz > highest || (kilohertz == highest && processor < *fastest)) {
            fastest = processor;
            highest = kilohertz;
        }
    }
    return fastest;
}

pinnedThread::pinnedThread(int processor) : before(allowedProcessors())
{
    if (before.empty() || processor < 0 || processor >= mostProcessors)
        pinned = cannotPin(processor, EINVAL);
    else if (!allow({processor}))
        pinned = cannotPin(processor, errno);
}

pinnedThread::~pinnedThread()
{
    if (pinned)
        allow(before);
}
