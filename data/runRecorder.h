// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"
#include "engine/contextProbe.h"
#include "engine/processorTime.h"

#include <QMap>

#include <chrono>
#include <memory>

/// This machine, as the record of its results has it.
machineFacts thisMachine();

/// Writes down a run while it is measured: the hook of the runner, from its construction to finish.
class runRecorder : public measurementHook
{
public:
    /// Where the surroundings of a run are read. Tests bring their own.
    struct sources {
        contextSources context;
        processorTimeSources time;
    };

    /// Notes when the run starts, on what machine and in what surroundings.
    explicit runRecorder(const runSettings &settings, sources from = {});
    ~runRecorder() override;

    /// The tests that follow are measured for the time @p index, counted from 0.
    void setRepetition(int index) { repetition = index; }
    /// What a check of the tests gave before the run.
    void setVerdicts(const QMap<QString, digestVerdict> &verdicts) { frames = verdicts; }

    void testStarts(const testBase &test, const QSize &resolution) override;
    void roundMeasured(const roundSpan &span) override;
    void testEnded(const testBase &test, testEnd end, float average) override;

    /// The record of everything so far, of a run that ends now.
    runRecord finish(bool isStopped);

private:
    sources from;
    runRecord record;
    testRun current;
    int repetition = 0;
    QMap<QString, digestVerdict> frames;
    std::unique_ptr<processorTime> others;
    std::chrono::steady_clock::time_point runStart;
    std::chrono::steady_clock::time_point testStart;
};
