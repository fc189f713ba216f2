// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measurementHook.h"

#include <vector>

/// Hands what it is told to several hooks, in their order. They are not owned.
class hookList : public measurementHook
{
public:
    void add(measurementHook *hook) { hooks.push_back(hook); }

    void testStarts(const testBase &test, const QSize &resolution) override
    {
        for (measurementHook *hook : hooks)
            hook->testStarts(test, resolution);
    }
    void roundMeasured(const roundSpan &span) override
    {
        for (measurementHook *hook : hooks)
            hook->roundMeasured(span);
    }
    void testEnded(const testBase &test, testEnd end, float average) override
    {
        for (measurementHook *hook : hooks)
            hook->testEnded(test, end, average);
    }

private:
    std::vector<measurementHook *> hooks;
};
