// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/builtInList.h"
#include "engine/benchResults.h"
#include "tests/suiteFacts.h"

/// A machine with all results of a full run, each @p speed times that of a known processor with a
/// single thread, and times the threads where all cores work.
inline benchResults wholeRun(const QString &cpu, float speed = 1,
                             const QString &os = QStringLiteral("linux"), int threads = 4,
                             const QString &computer = QStringLiteral("LAB7"))
{
    static const QMap<QString, benchResults::test> results = builtInMachines().first().getTests();
    benchResults machine(computer, os, cpu, 2.4e9F, threads);
    float single = 0; // the form for all cores follows that for one
    for (const testFacts &test : suiteFacts()) {
        if (!test.isInFullRuns())
            continue;
        const QString name = QString::fromUtf8(test.name);
        if (!test.isMulticore())
            single = results.value(name).value * speed;
        const float factor = test.isMulticore() ? static_cast<float>(threads) : 1.0F;
        machine.setTest(name, benchResults::test(single * factor));
    }
    return machine;
}
