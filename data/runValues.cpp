// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runValues.h"

#include "data/statistics.h"

#include <QSet>

QStringList testNamesOf(const runRecord &run)
{
    QStringList names;
    QSet<QString> known;
    for (const testRun &test : run.tests) {
        if (!known.contains(test.name))
            names.append(test.name);
        known.insert(test.name);
    }
    return names;
}

std::vector<double> valuesOf(const runRecord &run, const QString &name)
{
    std::vector<double> values;
    for (const testRun &test : run.tests) {
        const std::optional<double> value = test.value();
        if (value && test.name == name)
            values.push_back(*value);
    }
    return values;
}

std::optional<double> valueOf(const runRecord &run, const QString &name)
{
    const std::vector<double> values = valuesOf(run, name);
    return values.empty() ? std::nullopt : std::make_optional(medianOf(values));
}

benchResults resultsOf(const runRecord &run)
{
    benchResults machine(run.machine.name, run.machine.os, run.machine.processor,
                         static_cast<float>(run.machine.clock), run.machine.threads);
    for (const QString &name : testNamesOf(run)) {
        if (const std::optional<double> value = valueOf(run, name))
            machine.setTest(name, benchResults::test(static_cast<float>(*value)));
    }
    return machine;
}
