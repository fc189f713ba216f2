// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/runRecord.h"

#include "simulatedRounds.h"

#include <QStringList>
#include <QTimeZone>

/// A run about which everything is known, each value another one.
inline runRecord fullRun()
{
    runRecord run;
    run.started = QDateTime(QDate(2026, 1, 31), QTime(23, 59, 58, 7), Qt::OffsetFromUTC, 3600);
    run.ended = run.started.addMSecs(150'123);
    run.isStopped = true;
    run.settings = {runSettings::someTests, 8000, 3, 1.5, 6, 2};
    run.build = {QStringLiteral("26.0"),
                 QStringLiteral("GNU"),
                 QStringLiteral("12.2.0"),
                 QStringLiteral("Release"),
                 QStringLiteral("-O2 \"quoted\" \\ -fno-tree-vectorize"),
                 QStringLiteral("0123456789abcdef"),
                 true};
    run.machine = {QStringLiteral("Rechner \u00e4\u4e2d\U0001F600"), QStringLiteral("linux"),
                   QStringLiteral("Some | Processor, X8"), 8, 3.4e9};
    machineContext &context = run.context;
    context.governor = QStringLiteral("powersave");
    context.frequencyDriver = QStringLiteral("intel_pstate");
    context.boost = false;
    context.power = machineContext::battery;
    context.virtualMachine = QStringLiteral("kvm");
    context.kernel = QStringLiteral("Linux 6.1.0");
    context.pageSize = 4096;
    context.hugePages = QStringLiteral("madvise");
    context.environment = {{QStringLiteral("OMP_NUM_THREADS"), QStringLiteral("4")},
                           {QStringLiteral("LD_PRELOAD"), QString()}};
    context.atStart = {1.25, 45.5};
    context.atEnd = {2.5, -3.0};

    simulatedRounds simulation(1);
    testRun single = testOf(QStringLiteral("mandel"),
                            simulation.measured(simulation.spans(40, 0.2003, 0.003)), 8.2944F);
    single.resolution = QSize(3820, 2160);
    single.repetition = 2;
    single.otherProcesses = 2.5;
    single.wallSeconds = 8.125;
    single.frames = digestVerdict::wrong;
    testRun multi = testOf(QStringLiteral("mandel (multicore)"),
                           simulation.measured(simulation.spans(7, 1.2003, 0.02)), 8.2944F);
    multi.isMulticore = true;
    multi.end = testEnd::stopped;
    multi.rounds[3].official = -3600.0F;
    testRun failed;
    failed.name = QStringLiteral("colors ");
    failed.end = testEnd::failed;
    run.tests = {single, multi, failed};
    return run;
}

/// The tests "mandel" and "lines", each @p repetitions times.
inline runRecord repeatedRun(int repetitions, quint32 seed = 1, double mean = 0.1603)
{
    runRecord run;
    run.settings.repetitions = repetitions;
    simulatedRounds simulation(seed);
    for (int i = 0; i < repetitions; ++i) {
        for (const char *name : {"mandel", "lines"}) {
            run.tests.push_back(testOf(QString::fromLatin1(name),
                                       simulation.measured(simulation.spans(50, mean, 0.005))));
            run.tests.back().repetition = i;
        }
    }
    return run;
}

/// The names of the members in which the runs differ.
inline QStringList differences(const runRecord &left, const runRecord &right)
{
    QStringList found;
    const auto add = [&found](const char *name, bool isSame) {
        if (!isSame)
            found.append(QString::fromLatin1(name));
    };
    add("started", left.started == right.started
                       && left.started.offsetFromUtc() == right.started.offsetFromUtc());
    add("ended", left.ended == right.ended);
    add("isStopped", left.isStopped == right.isStopped);
    const auto settings = [](const runSettings &s) {
        return std::tie(s.wanted, s.testTime, s.repetitions, s.warmUpSeconds, s.threads,
                        s.pinnedProcessor);
    };
    add("settings", settings(left.settings) == settings(right.settings));
    const auto build = [](const buildFacts &b) {
        return std::tie(b.version, b.compiler, b.compilerVersion, b.buildType, b.measuredFlags,
                        b.workloadDigest, b.isSanitized);
    };
    add("build", build(left.build) == build(right.build));
    const auto machine = [](const machineFacts &m) {
        return std::tie(m.name, m.os, m.processor, m.threads, m.clock);
    };
    add("machine", machine(left.machine) == machine(right.machine));
    const auto context = [](const machineContext &c) {
        return std::tie(c.governor, c.frequencyDriver, c.boost, c.power, c.virtualMachine, c.kernel,
                        c.pageSize, c.hugePages, c.environment, c.atStart.loadAverage,
                        c.atStart.temperature, c.atEnd.loadAverage, c.atEnd.temperature);
    };
    add("context", context(left.context) == context(right.context));
    add("tests", left.tests.size() == right.tests.size());
    const auto test = [](const testRun &t) {
        return std::tie(t.name, t.unit, t.isMulticore, t.resolution, t.repetition, t.work,
                        t.average, t.end, t.otherProcesses, t.wallSeconds, t.frames);
    };
    const auto isSameRound = [](const roundSpan &a, const roundSpan &b) {
        return a.official == b.official && a.fine == b.fine;
    };
    for (std::size_t i = 0; i < std::min(left.tests.size(), right.tests.size()); ++i) {
        const testRun &a = left.tests[i];
        const testRun &b = right.tests[i];
        add("test", test(a) == test(b));
        add("rounds", std::equal(a.rounds.begin(), a.rounds.end(), b.rounds.begin(), b.rounds.end(),
                                 isSameRound));
    }
    return found;
}
