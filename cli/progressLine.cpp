// SPDX-License-Identifier: GPL-3.0-or-later
#include "cli/progressLine.h"

#include "engine/clock.h"

using std::chrono::milliseconds;

progressLine::progressLine(liveLine &target, int testCount, milliseconds testTime)
    : line(target),
      progress(testCount, testTime)
{
}

void progressLine::testStarts(const testBase &test, const QSize &resolution)
{
    progress.testStarts(test, resolution);
    show();
}

void progressLine::roundMeasured(const roundSpan &span)
{
    // Often enough for the eye, and seldom enough for the shortest rounds.
    constexpr milliseconds pause(100);
    progress.roundMeasured(span);
    if (currentClocks.steady() - shown >= pause)
        show();
}

void progressLine::testEnded(const testBase &test, testEnd end, float average)
{
    progress.testEnded(test, end, average);
    line.clear();
}

void progressLine::show()
{
    if (!line.isVisible())
        return;
    shown = currentClocks.steady();
    line.show(QStringLiteral(" %1/%2 %3 left %4")
                  .arg(QString::number(progress.place()), QString::number(progress.testCount()),
                       timeText(progress.left()), progress.medianText()));
}
