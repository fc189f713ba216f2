// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchAndMeasure.h"

#include "engine/stopwatch.h"
#include "engine/testBase.h"

namespace
{

/// Seconds on the process stopwatch, which starts with the first question. Rounded to single
/// precision like all stored results.
double now()
{
    static const stopwatch processStopwatch;
    return static_cast<double>(static_cast<float>(processStopwatch.elapsed()) * 0.001F);
}

} // namespace

void benchAndMeasure::reset()
{
    count = 0;
    total = 0;
    minimum = 1'000'000;
    maximum = 0;
}

float benchAndMeasure::measure(testBase *test)
{
    ++count;
    if (test)
        test->preRun();
    // Outside of the official span, which holds nothing but the work.
    const auto fineStart = currentClocks.steady();
    const double start = now();
    if (test)
        test->run();
    const double span = now() - start;
    latest.fine = currentClocks.steady() - fineStart;
    latest.official = static_cast<float>(span);
    if (test)
        test->postRun();

    total = static_cast<float>(static_cast<double>(total) + span);
    if (static_cast<double>(minimum) > span)
        minimum = static_cast<float>(span);
    if (static_cast<double>(maximum) < span)
        maximum = static_cast<float>(span);
    average = total / static_cast<float>(count);
    return static_cast<float>(span);
}
