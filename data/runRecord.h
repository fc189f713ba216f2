// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/buildFacts.h"
#include "engine/digestVerdict.h"
#include "engine/machineContext.h"
#include "engine/measurementHook.h"

#include <QDateTime>
#include <QSize>
#include <QString>

#include <optional>
#include <vector>

/// The machine, as its record has it.
struct machineFacts {
    QString name;
    QString os;
    QString processor;
    int threads = 0;
    double clock = 0; ///< nominal, Hz; 0 when unknown
};

/// One test of a run, measured once. A test that is repeated stands there once for each time.
struct testRun {
    QString name; ///< exact, the key of its results
    QString unit; ///< of its throughput: M stands for a million, K for a thousand
    bool isMulticore = false;
    QSize resolution;
    int repetition = 0; ///< counted from 0
    double work = 0;    ///< of one round, in millions of the unit
    float average = 0;  ///< the official mean of a round in seconds
    testEnd end = testEnd::complete;
    std::vector<roundSpan> rounds;
    /// Seconds of processor time that other processes took while the test was measured, all
    /// processors together, and how long that was.
    std::optional<double> otherProcesses;
    double wallSeconds = 0;
    std::optional<digestVerdict> frames;

    /// The official throughput in millions of the unit per second; none of a failed test.
    std::optional<double> value() const;
};

/// What the user asked for.
struct runSettings {
    enum kind { fullRun, someTests };
    kind wanted = fullRun;
    int testTime = 0; ///< milliseconds for each test
    int repetitions = 1;
    double warmUpSeconds = 0;
    std::optional<int> threads;         ///< where another number than the machine's was asked for
    std::optional<int> pinnedProcessor; ///< of the single-core tests
};

/// Everything about one run: what is kept of it, shown of it, and compared.
struct runRecord {
    QDateTime started; ///< with its offset from UTC
    QDateTime ended;
    bool isStopped = false; ///< the user ended the run before its end
    runSettings settings;
    buildFacts build;
    machineFacts machine;
    machineContext context;
    std::vector<testRun> tests; ///< in the order in which they were measured
};
