// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorTime.h"

#include "engine/clock.h"

#include <chrono>
#include <utility>

processorTime::processorTime(processorTimeSources from) : sources(std::move(from)), start(read()) {}

std::optional<double> othersLoad(const std::function<void()> &pass,
                                 const processorTimeSources &sources)
{
    const auto start = currentClocks.steady();
    const processorTime others(sources);
    pass();
    const std::optional<double> used = others.othersSeconds();
    const std::chrono::duration<double> span = currentClocks.steady() - start;
    if (!used || span.count() <= 0)
        return std::nullopt;
    return *used / span.count();
}
