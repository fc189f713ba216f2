// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/processorTime.h"

std::optional<double> processorTimeSources::processSeconds()
{
    return std::nullopt;
}

processorTime::reading processorTime::read() const
{
    return {};
}

std::optional<double> processorTime::othersSeconds() const
{
    return std::nullopt;
}
