// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runRecorder.h"

#include "engine/clock.h"
#include "engine/machineProbe.h"
#include "engine/testBase.h"

namespace
{

QDateTime now()
{
    const QDateTime local = QDateTime::currentDateTime();
    return local.toOffsetFromUtc(local.offsetFromUtc());
}

} // namespace

machineFacts thisMachine()
{
    const benchResults machine = machineProbe::instance().record();
    return {machine.getName(), machine.getOs(), machine.getCpu(), machine.getThreads(),
            static_cast<double>(machine.getFrequency())};
}

runRecorder::runRecorder(const runSettings &settings, sources readFrom)
    : from(std::move(readFrom)),
      runStart(currentClocks.steady())
{
    record.started = now();
    record.settings = settings;
    record.build = thisBuild();
    record.machine = thisMachine();
    record.context = readMachineContext(from.context);
    record.context.atStart = readMachineMoment(from.context.root);
}

runRecorder::~runRecorder() = default;

void runRecorder::testStarts(const testBase &test, const QSize &resolution)
{
    current = {};
    current.name = test.getName();
    current.unit = test.getUnit();
    current.isMulticore = test.isMulticore();
    current.resolution = resolution;
    current.repetition = repetition;
    if (const auto verdict = frames.find(current.name); verdict != frames.end())
        current.frames = *verdict;
    others = std::make_unique<processorTime>(from.time);
    testStart = currentClocks.steady();
}

void runRecorder::roundMeasured(const roundSpan &span)
{
    current.rounds.push_back(span);
}

void runRecorder::testEnded(const testBase &test, testEnd end, float average)
{
    const std::chrono::duration<double> wall = currentClocks.steady() - testStart;
    current.wallSeconds = wall.count();
    current.otherProcesses = others->othersSeconds();
    current.end = end;
    if (end != testEnd::failed) {
        current.work = static_cast<double>(test.getWork());
        current.average = average;
    }
    record.tests.push_back(std::move(current));
}

runRecord runRecorder::finish(bool isStopped)
{
    record.isStopped = isStopped;
    // By the clock that nobody sets: a run takes as long as it takes.
    const auto span = currentClocks.steady() - runStart;
    record.ended = record.started.addMSecs(
        std::chrono::duration_cast<std::chrono::milliseconds>(span).count());
    record.context.atEnd = readMachineMoment(from.context.root);
    return record;
}
