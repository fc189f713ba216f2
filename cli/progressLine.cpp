// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/progressLine.h"

#include "engine/clock.h"
#include "engine/testBase.h"

#include <algorithm>

using std::chrono::milliseconds;

QString timeText(milliseconds span)
{
    const qint64 seconds = (std::max<qint64>(span.count(), 0) + 999) / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

progressLine::progressLine(liveLine &target, int testCount, milliseconds testTime)
    : line(target),
      count(testCount),
      time(testTime)
{
}

void progressLine::testStarts(const testBase &test, const QSize &)
{
    ++place;
    current = &test;
    spans.clear();
    testStart = currentClocks.steady();
    show();
}

void progressLine::roundMeasured(const roundSpan &span)
{
    // Often enough for the eye, and seldom enough for the shortest rounds.
    constexpr milliseconds pause(100);
    spans.push_back(span.fine);
    if (currentClocks.steady() - shown >= pause)
        show();
}

void progressLine::testEnded(const testBase &, testEnd, float)
{
    current = nullptr;
    line.clear();
}

void progressLine::show()
{
    if (!line.isVisible())
        return;
    shown = currentClocks.steady();
    const auto passed = std::chrono::duration_cast<milliseconds>(shown - testStart);
    const milliseconds left = std::max(time - passed, milliseconds(0)) + (count - place) * time;
    line.show(
        QStringLiteral(" %1/%2 %3 left %4")
            .arg(QString::number(place), QString::number(count), timeText(left), medianText()));
}

QString progressLine::medianText() const
{
    if (spans.empty())
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
