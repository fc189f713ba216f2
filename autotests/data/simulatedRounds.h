// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"

#include <cmath>
#include <random>
#include <vector>

/// Rounds as a machine would measure them that works steadily but for some noise; the same for one
/// seed on every system.
class simulatedRounds
{
public:
    explicit simulatedRounds(quint32 seed, double secondsSinceStart = 10)
        : source(seed),
          time(secondsSinceStart)
    {
    }

    /// Seconds of @p count rounds, with a standard deviation that is @p noise times the mean.
    std::vector<double> spans(int count, double mean, double noise)
    {
        std::vector<double> result;
        for (int i = 0; i < count; ++i)
            result.push_back(mean * (1 + noise * normal()));
        return result;
    }

    /// The same spans as both clocks show them. The official one counts @p rate times as fast.
    std::vector<roundSpan> measured(const std::vector<double> &spans, double rate = 1)
    {
        std::vector<roundSpan> rounds;
        for (const double span : spans) {
            const double begin = reading();
            time += span * rate;
            const auto official = static_cast<float>(reading() - begin);
            rounds.push_back({official, std::chrono::nanoseconds(std::llround(span * 1e9))});
            time += 0.0003 + 0.0004 * uniform(); // between two rounds
        }
        return rounds;
    }

    /// A number of a normal distribution (Box and Muller); the standard's own differ between
    /// libraries.
    double normal()
    {
        const double radius = std::sqrt(-2 * std::log(uniform()));
        return radius * std::cos(6.283185307179586 * uniform());
    }

    double uniform() { return (static_cast<double>(source()) + 0.5) / 4294967296.0; }

private:
    /// As the stopwatch of the measurements counts: whole milliseconds in single precision.
    double reading() const
    {
        return static_cast<double>(static_cast<float>(std::floor(time * 1000)) * 0.001F);
    }

    std::mt19937 source;
    double time;
};

/// A test with these rounds and the official average that goes with them.
inline testRun testOf(const QString &name, const std::vector<roundSpan> &rounds, double work = 8)
{
    testRun test;
    test.name = name;
    test.unit = QStringLiteral("MPixel");
    test.work = work;
    test.rounds = rounds;
    double total = 0;
    for (const roundSpan &round : rounds)
        total += static_cast<double>(round.official);
    if (!rounds.empty())
        test.average = static_cast<float>(total / static_cast<double>(rounds.size()));
    return test;
}
