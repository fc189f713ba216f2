// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"

#include "engine/benchAndMeasure.h"
#include "engine/machineProbe.h"
#include "engine/memoryPolicy.h"
#include "engine/stopwatch.h"

#include <QSysInfo>

#include <algorithm>
#include <new>

namespace
{

constexpr int nameFieldWidth = 36;

QVector<testBase *> pointersTo(const suite &tests)
{
    QVector<testBase *> pointers;
    for (const auto &test : tests)
        pointers.append(test.get());
    return pointers;
}

QString nameOf(const QSize &resolution)
{
    return QStringLiteral("%1x%2").arg(QString::number(resolution.width()),
                                       QString::number(resolution.height()));
}

/// A test's own buffers fail without an exception, the toolkit's do not.
bool isSetUp(testBase *test, const QSize &resolution)
{
    try {
        if (test->setup(resolution.width(), resolution.height()))
            return true;
    } catch (const std::bad_alloc &) {
        test->release();
    }
    return false;
}

/// Times one round. False if it could not do its work.
bool isRoundWorked(testBase *test, benchAndMeasure &measurement)
{
    try {
        measurement.measure(test);
        return !test->hasFailed();
    } catch (const std::bad_alloc &) {
        return false;
    }
}

} // namespace

benchBase::benchBase(printHook *target, ::stopHook *stop, ::updateHook *update)
    : benchBase(target, stop, update, makeSuite(target))
{
}

benchBase::benchBase(printHook *target, ::stopHook *stop, ::updateHook *update, suite ownTests,
                     std::unique_ptr<onlineDatabase> database)
    : benchDataAccess(target, pointersTo(ownTests), std::move(database)),
      stopHook(stop),
      updateHook(update),
      tests(std::move(ownTests))
{
    memoryPolicy::apply();
    printMachine();
}

benchBase::~benchBase() = default;

void benchBase::printMachine()
{
    const machineProbe &probe = machineProbe::instance();
    QString threads;
    for (const char available : probe.getThreadMap())
        threads += QLatin1Char(available ? 'A' : '_');
    print(QStringLiteral("Found %1 threads [%2]\n")
              .arg(QString::number(probe.getThreadCount()), threads));
    print(QStringLiteral("CPU/HW: %1\n").arg(probe.getProcessorName()));
    const QVector<float> frequencies = probe.getFrequencies();
    if (!frequencies.isEmpty()) {
        print(QStringLiteral("CPU Frequency seems to be %1 GHz\n")
                  .arg(static_cast<double>(frequencies.last() * 1e-9F)));
    }
}

void benchBase::warnOfHugePages()
{
    if (!memoryPolicy::hasOrdinaryPages()) {
        print(QStringLiteral("Warning: memory comes in huge pages here; results cannot be compared "
                             "with those of other machines\n"));
    }
}

QStringList benchBase::getTestNames() const
{
    QStringList names;
    for (const auto &test : tests)
        names.append(test ? test->getName() : QString());
    return names;
}

const QVector<QSize> &benchBase::resolutions()
{
    static const QVector<QSize> sizes = {{3820, 2160}, {1920, 1080}, {1600, 900}, {1280, 960},
                                         {800, 600},   {640, 480},   {320, 240}};
    return sizes;
}

QStringList benchBase::standardResolutionNames()
{
    QStringList names;
    for (const QSize &resolution : resolutions())
        names.append(nameOf(resolution));
    return names;
}

QString benchBase::getTitle() const
{
    return QStringLiteral("Fennick CPU bench (%1)").arg(QSysInfo::buildCpuArchitecture());
}

bool benchBase::runBenchmark()
{
    print(QStringLiteral("%1\n").arg(getTitle()));
    const QSize resolution = standardResolution();
    print(QStringLiteral("Start Benchmark (%1s per Test (%2) use virtual resolution %3x%4):\n")
              .arg(QString::number(testTime / 1000), QString::number(tests.size()),
                   QString::number(resolution.width()), QString::number(resolution.height())));
    warnOfHugePages();
    failedTests = 0;
    for (const auto &test : tests) {
        if (!test || test->isSingleOnly())
            continue;
        if (!runTest(test.get(), resolution, false))
            ++failedTests;
        if (isStopRequested()) {
            print(QStringLiteral("stopped by user ...\n"));
            return true;
        }
    }
    print(QStringLiteral("Benchmark finished\n"));
    return false;
}

bool benchBase::runSingleTest(const QString &testName, const QString &resolutionName)
{
    const auto test = std::find_if(tests.begin(), tests.end(), [&](const auto &candidate) {
        return candidate && candidate->getName() == testName;
    });
    if (test == tests.end())
        return false;
    const int index = static_cast<int>(getResolutionNames().indexOf(resolutionName));
    return runTest(test->get(), resolutions().at(std::max(index, 0)), true);
}

bool benchBase::runTest(testBase *test, const QSize &resolution, bool isSingle)
{
    if (isSingle) {
        print(QStringLiteral("Start single test (%1s testtime use virtual resolution %2x%3):\n")
                  .arg(QString::number(testTime / 1000), QString::number(resolution.width()),
                       QString::number(resolution.height())));
        warnOfHugePages();
    }
    if (measurementHook)
        measurementHook->testStarts(*test, resolution);
    if (!isSetUp(test, resolution)) {
        print(QStringLiteral("Error: cant setup test %1").arg(test->getName()));
        if (measurementHook)
            measurementHook->testEnded(*test, testEnd::failed, 0);
        return false;
    }
    if (updateHook)
        updateHook->updateStart(test);
    benchAndMeasure measurement;
    measurement.reset();
    print(QStringLiteral("Test %1").arg(test->getName(), nameFieldWidth));
    const testEnd end = timeTest(test, measurement);
    const bool isWorked = end != testEnd::failed;
    if (measurementHook)
        measurementHook->testEnded(*test, end, measurement.getAverage());
    if (updateHook)
        updateHook->updateEnd(test);

    if (isWorked) {
        if (resolution == standardResolution())
            record(test, measurement.getAverage());
        printResult(test, measurement.getAverage());
    } else {
        print(QStringLiteral(" Error: no memory for a round of this test, so it has no result\n"));
    }
    test->release();
    return isWorked;
}

void benchBase::printResult(const testBase *test, float average)
{
    print(QStringLiteral(" Result: %1 (avg %2ms)\n")
              .arg(test->getResultText(average),
                   QString::number(static_cast<double>(average * 1000.0F))));
}

testEnd benchBase::timeTest(testBase *test, benchAndMeasure &measurement)
{
    const steadyStopwatch timer;
    int last = 0;
    for (;;) {
        const int elapsed = timer.elapsed();
        if (elapsed >= testTime)
            return testEnd::complete;
        if (!isRoundWorked(test, measurement))
            return testEnd::failed;
        if (measurementHook)
            measurementHook->roundMeasured(measurement.getLatestSpan());
        if (updateHook)
            updateHook->updateProgress(test, elapsed - last);
        last = elapsed;
        if (isStopRequested()) {
            print(QStringLiteral("\nstopped by user ...\n"));
            return testEnd::stopped;
        }
    }
}

bool benchBase::isStopRequested()
{
    return stopHook && stopHook->isStopRequested();
}

void benchBase::record(const testBase *test, float average)
{
    if (results.isEmpty())
        return;
    benchResults &machine = results.last();
    machine.setMeasured(true);
    if (benchResults::test *entry = machine.findTest(test->getName()))
        entry->value = test->getWork() / average;
}
