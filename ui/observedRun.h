// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/instanceLock.h"
#include "data/runProgress.h"
#include "data/runRecorder.h"
#include "engine/hookList.h"

class benchBase;
class runStatus;

/// Tells the status bar how far a run is, some times a second. Only the hook's moments between two
/// rounds are used, so that nothing of it falls into a measured span.
class statusProgress : public measurementHook
{
public:
    statusProgress(runStatus &target, const runSettings &settings, int testCount);

    void testStarts(const testBase &test, const QSize &resolution) override;
    void roundMeasured(const roundSpan &span) override;
    void testEnded(const testBase &test, testEnd end, float average) override;

private:
    void show();
    QString text() const;

    runStatus &status;
    runProgress progress;
    bool isFullRun;
    std::chrono::steady_clock::time_point shown;
};

/// A run of the window, from its construction to finish: it is written down, other instances learn
/// of it, and the status bar tells how far it is.
class observedRun
{
public:
    /// @p runner is about to run @p testCount tests.
    observedRun(benchBase &runner, runStatus &status, const runSettings &settings, int testCount);
    observedRun(const observedRun &) = delete;
    observedRun &operator=(const observedRun &) = delete;
    ~observedRun();

    /// The record of the run, which ends now.
    runRecord finish(bool isStopped);

private:
    benchBase &observed;
    runStatus &bar;
    instanceLock lock;
    runRecorder recorder;
    statusProgress progress;
    hookList hooks;
};
