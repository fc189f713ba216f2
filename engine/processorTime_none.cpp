// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorTime.h"

#include <utility>

std::optional<double> processorTimeSources::processSeconds()
{
    return std::nullopt;
}

processorTime::processorTime(processorTimeSources from) : sources(std::move(from)), start(read()) {}

processorTime::reading processorTime::read() const
{
    return {};
}

std::optional<double> processorTime::othersSeconds() const
{
    return std::nullopt;
}
