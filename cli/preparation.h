// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "engine/measurementHook.h"
#include "engine/outcome.h"
#include "engine/pinning.h"
#include "engine/processorTime.h"

#include <QVector>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

class stopHook;

/// Works for @p time without measuring, so that the processor is as warm as in the middle of a run:
/// rounds of the first multi-core test among @p tests, or of the first one, at @p resolution.
void warmUp(const QVector<testBase *> &tests, const QSize &resolution,
            std::chrono::milliseconds time, stopHook &stop);

/// Whether other programs leave the processor alone: less than a tenth of one processor over a
/// second, for at most @p most tries. True where the system does not tell. @p secondPasses waits,
/// and @p sources say where processor time is read.
bool waitForQuiet(int most, stopHook &stop, const std::function<void()> &secondPasses,
                  const processorTimeSources &sources = {});

/// Keeps single-core tests on one processor, and leaves the others all of them.
class pinHook : public measurementHook
{
public:
    /// Chooses the processor with the highest clock. Must be made before the first test.
    pinHook();

    /// None if no processor can be chosen here.
    std::optional<int> chosen() const { return processor; }
    /// Why a test could not be pinned, if one could not.
    const outcome<void> &isPinned() const { return pinned; }

    void testStarts(const testBase &test, const QSize &resolution) override;
    void roundMeasured(const roundSpan &) override {}
    void testEnded(const testBase &test, testEnd end, float average) override;

private:
    std::optional<int> processor;
    std::unique_ptr<pinnedThread> pin;
    outcome<void> pinned;
};
