// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runProgress.h"

#include "engine/clock.h"
#include "engine/testBase.h"

#include <algorithm>
#include <cmath>

using std::chrono::milliseconds;

QString timeText(milliseconds span)
{
    const qint64 seconds = (std::max<qint64>(span.count(), 0) + 999) / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

runProgress::runProgress(int testCount, milliseconds testTime) : count(testCount), time(testTime) {}

void runProgress::testStarts(const testBase &test, const QSize &)
{
    ++started;
    current = &test;
    spans.clear();
    mean = 0;
    squares = 0;
    testStart = currentClocks.steady();
}

void runProgress::roundMeasured(const roundSpan &span)
{
    spans.push_back(span.fine);
    // After B. P. Welford, Technometrics 4 (1962): a few operations, however many rounds there are.
    const double seconds = std::chrono::duration<double>(span.fine).count();
    const double distance = seconds - mean;
    mean += distance / rounds();
    squares += distance * (seconds - mean);
}

void runProgress::testEnded(const testBase &, testEnd, float)
{
    current = nullptr;
}

QString runProgress::testName() const
{
    return current ? current->getName().trimmed() : QString();
}

milliseconds runProgress::passed() const
{
    const auto span = std::chrono::duration_cast<milliseconds>(currentClocks.steady() - testStart);
    return current ? std::clamp(span, milliseconds(0), time) : time;
}

milliseconds runProgress::left() const
{
    return started == 0 ? count * time : time - passed() + (count - started) * time;
}

double runProgress::share() const
{
    const milliseconds all = count * time;
    return all.count() > 0
               ? 1 - static_cast<double>(left().count()) / static_cast<double>(all.count())
               : 0;
}

QString runProgress::medianText() const
{
    if (spans.empty() || !current)
        return {};
    std::vector<std::chrono::nanoseconds> sorted = spans;
    const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    const double seconds = std::chrono::duration<double>(*middle).count();
    if (!(seconds > 0))
        return {};
    return QStringLiteral("%1 %2/s").arg(
        QString::number(static_cast<double>(current->getWork()) / seconds, 'g', 4),
        current->getUnit());
}

QString runProgress::spreadText() const
{
    if (rounds() < 2 || !(mean > 0))
        return {};
    const double deviation = std::sqrt(squares / (rounds() - 1));
    return QStringLiteral("%1 %").arg(100 * deviation / mean, 0, 'f', 1);
}
