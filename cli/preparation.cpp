// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/preparation.h"

#include "engine/clock.h"
#include "engine/hooks.h"
#include "engine/testBase.h"

#include <algorithm>
#include <new>

namespace
{

void workUntil(testBase &test, std::chrono::steady_clock::time_point end, stopHook &stop)
{
    while (currentClocks.steady() < end && !stop.isStopRequested() && !test.hasFailed()) {
        test.preRun();
        test.run();
        test.postRun();
    }
}

} // namespace

void warmUp(const QVector<testBase *> &tests, const QSize &resolution,
            std::chrono::milliseconds time, stopHook &stop)
{
    const auto end = currentClocks.steady() + time;
    auto test = std::find_if(tests.begin(), tests.end(),
                             [](const testBase *one) { return one->isMulticore(); });
    if (test == tests.end())
        test = tests.begin();
    if (test == tests.end())
        return;
    try {
        if ((*test)->setup(resolution.width(), resolution.height()))
            workUntil(**test, end, stop);
    } catch (const std::bad_alloc &) {
        // The runner will say so when it comes to this test.
    }
    (*test)->release();
}

bool waitForQuiet(int most, stopHook &stop, const std::function<void()> &secondPasses,
                  const processorTimeSources &sources)
{
    constexpr double quiet = 0.1;
    for (int tries = 0; tries < most && !stop.isStopRequested(); ++tries) {
        if (othersLoad(secondPasses, sources).value_or(0) < quiet)
            return true;
    }
    return false;
}

pinHook::pinHook() : processor(fastestProcessor(allowedProcessors()))
{
    // The OpenMP library counts the processors of the thread that opens its first region, and its
    // threads keep those they were made with: both come before anything is pinned.
#pragma omp parallel
    {
    }
}

void pinHook::testStarts(const testBase &test, const QSize &)
{
    if (!processor || test.isMulticore())
        return;
    pin = std::make_unique<pinnedThread>(*processor);
    if (!pin->isPinned())
        pinned = pin->isPinned();
}

void pinHook::testEnded(const testBase &, testEnd, float)
{
    pin.reset();
}
