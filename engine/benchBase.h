// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/benchDataAccess.h"
#include "engine/measurementHook.h"
#include "tests/suite.h"

#include <QSize>
#include <QStringList>

class benchAndMeasure;

/// The runner: owns the suite, drives it, and records its results into this machine's record.
class benchBase : public benchDataAccess
{
public:
    /// The time in milliseconds that each test of a full run is given.
    static constexpr int standardTestTime = 8000;

    /// The hooks are not owned and may be null. Prints what is known of the machine. Runs the
    /// benchmark's own suite.
    benchBase(printHook *target, ::stopHook *stop, ::updateHook *update);
    /// The same with other tests, and with another way to the online database.
    benchBase(printHook *target, ::stopHook *stop, ::updateHook *update, suite ownTests,
              std::unique_ptr<onlineDatabase> database = nullptr);
    ~benchBase() override;

    /// @p hook follows what is measured; it is not owned and may be null.
    void setMeasurementHook(::measurementHook *hook) { measurementHook = hook; }
    void setTestTime(int ms) { testTime = ms; }
    float getTestTimeSeconds() const { return static_cast<float>(testTime) * 0.001F; }
    QStringList getTestNames() const;
    /// The virtual resolutions as "widthxheight", the standard resolution first.
    QStringList getResolutionNames() const { return standardResolutionNames(); }
    /// The same without a runner.
    static QStringList standardResolutionNames();
    /// The one of full runs, and of results that are recorded.
    static QSize standardResolution() { return resolutions().first(); }
    QString getTitle() const;

    /// Runs all tests but the single-only ones at the standard resolution. True if the user stopped
    /// the run.
    bool runBenchmark();
    /// How many tests of the latest full run gave no result.
    int getFailedTests() const { return failedTests; }
    /// Runs one test. An unknown resolution means the standard one. False, with no further effect,
    /// if no test has this name.
    bool runSingleTest(const QString &testName, const QString &resolutionName);
    /// Sets up, times and releases one test, and prints and records its result. Only results at the
    /// standard resolution are recorded. False, without a result, if the test could not be set up
    /// or a round of it could not do its work.
    bool runTest(testBase *test, const QSize &resolution, bool isSingle);

private:
    void printMachine();
    void warnOfHugePages();
    testEnd timeTest(testBase *test, benchAndMeasure &measurement);
    void printResult(const testBase *test, float average);
    bool isStopRequested();
    void record(const testBase *test, float average);

    ::stopHook *stopHook;
    ::updateHook *updateHook;
    ::measurementHook *measurementHook = nullptr;
    int testTime = standardTestTime;
    int failedTests = 0;
    /// The first one is the standard resolution. Its width is 3820, not 3840, on purpose: stored
    /// results refer to it.
    static const QVector<QSize> &resolutions();
    suite tests;
};
