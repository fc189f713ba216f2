// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/observedRun.h"

#include "engine/benchBase.h"
#include "engine/clock.h"
#include "ui/runStatus.h"

#include <QCoreApplication>

namespace
{

QString tr(const char *text)
{
    return QCoreApplication::translate("observedRun", text);
}

} // namespace

statusProgress::statusProgress(runStatus &target, const runSettings &settings, int testCount)
    : status(target),
      progress(testCount, std::chrono::milliseconds(settings.testTime)),
      isFullRun(settings.wanted == runSettings::fullRun)
{
}

void statusProgress::testStarts(const testBase &test, const QSize &resolution)
{
    progress.testStarts(test, resolution);
    show();
}

void statusProgress::roundMeasured(const roundSpan &span)
{
    // Often enough for the eye, and seldom enough to cost nothing that could be measured.
    constexpr std::chrono::milliseconds pause(250);
    progress.roundMeasured(span);
    if (currentClocks.steady() - shown >= pause)
        show();
}

void statusProgress::testEnded(const testBase &test, testEnd end, float average)
{
    progress.testEnded(test, end, average);
}

void statusProgress::show()
{
    shown = currentClocks.steady();
    status.showRun(text(), progress.share());
}

QString statusProgress::text() const
{
    const QString left = tr("%1 left").arg(timeText(progress.left()));
    if (isFullRun) {
        const QString place =
            tr("%1 of %2")
                .arg(QString::number(progress.place()), QString::number(progress.testCount()));
        return QStringList({progress.testName(), place, left, tr("Esc stops")})
            .join(QStringLiteral(", "));
    }
    QStringList parts = {progress.testName(), left};
    if (progress.rounds() > 0)
        parts.append(tr("rounds: %1").arg(progress.rounds()));
    if (const QString value = progress.medianText(); !value.isEmpty())
        parts.append(value);
    if (const QString spread = progress.spreadText(); !spread.isEmpty())
        parts.append(tr("spread %1").arg(spread));
    return parts.join(QStringLiteral(", "));
}

observedRun::observedRun(benchBase &runner, runStatus &status, const runSettings &settings,
                         int testCount)
    : observed(runner),
      bar(status),
      recorder(settings),
      progress(status, settings, testCount)
{
    lock.hold();
    hooks.add(&recorder);
    hooks.add(&progress);
    observed.setMeasurementHook(&hooks);
}

observedRun::~observedRun()
{
    observed.setMeasurementHook(nullptr);
    bar.endRun();
}

runRecord observedRun::finish(bool isStopped)
{
    return recorder.finish(isStopped);
}
