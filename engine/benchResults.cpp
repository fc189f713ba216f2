// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchResults.h"

benchResults::benchResults(const QString &machineName, const QString &osWord,
                           const QString &cpuName, float clock, int threadCount)
    : name(machineName),
      os(osWord),
      cpu(cpuName),
      threads(threadCount),
      frequency(clock)
{
}

void benchResults::setTest(const QString &testName, const test &result)
{
    tests.insert(testName, result);
}

benchResults::test *benchResults::findTest(const QString &testName)
{
    const auto found = tests.find(testName);
    return found == tests.end() ? nullptr : &found.value();
}

QString benchResults::describe(descriptionStyle style) const
{
    const QString clock =
        frequency == 0.0F ? QString()
                          : QStringLiteral(" %1 GHz").arg(static_cast<double>(frequency * 1e-9F));
    const QString threadCount = QString::number(threads);
    switch (style) {
    case fullDescription:
        return QStringLiteral("%1 %2C%3 (%4)").arg(name, threadCount, clock, os);
    case nameDescription:
        return name;
    case processorDescription:
        return QStringLiteral("%1 X%2 %3").arg(cpu, threadCount, clock);
    default:
        return {};
    }
}
