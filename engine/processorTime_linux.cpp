// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorTime.h"

#include "engine/systemFile.h"

#include <algorithm>
#include <ctime>
#include <sstream>
#include <unistd.h>

namespace
{

/// The seconds that all processors together were not idle, from the first line of proc/stat.
std::optional<double> busySeconds(const std::filesystem::path &root)
{
    const std::string text = systemFile::head(root / "proc/stat", 1024);
    std::istringstream line(text.substr(0, text.find('\n')));
    std::string name;
    long long user = 0;
    long long nice = 0;
    long long system = 0;
    long long idle = 0;
    long long ioWait = 0;
    long long interrupts = 0;
    long long softInterrupts = 0;
    long long steal = 0;
    line >> name >> user >> nice >> system >> idle >> ioWait >> interrupts >> softInterrupts
        >> steal;
    // The two numbers of guests that follow are part of user and nice.
    const long long all[] = {user, nice, system, interrupts, softInterrupts, steal};
    const long ticksPerSecond = sysconf(_SC_CLK_TCK);
    double busy = 0;
    for (const long long ticks : all) {
        if (!line || name != "cpu" || ticks < 0 || ticksPerSecond <= 0)
            return std::nullopt;
        busy += static_cast<double>(ticks) / static_cast<double>(ticksPerSecond);
    }
    return busy;
}

} // namespace

std::optional<double> processorTimeSources::processSeconds()
{
    timespec used = {};
    if (clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used) != 0)
        return std::nullopt;
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

processorTime::reading processorTime::read() const
{
    return {busySeconds(sources.root), sources.ownSeconds()};
}

std::optional<double> processorTime::othersSeconds() const
{
    const reading now = read();
    if (!start.busy || !start.own || !now.busy || !now.own)
        return std::nullopt;
    return std::max(0.0, (*now.busy - *start.busy) - (*now.own - *start.own));
}
