// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/groupRules.h"

#include "data/estimate.h"

#include <algorithm>
#include <limits>

namespace
{

/// Of an even number of values, the mean of the two in the middle.
float median(QVector<float> values)
{
    std::sort(values.begin(), values.end());
    const int middle = values.size() / 2;
    return values.size() % 2 == 1 ? values.at(middle)
                                  : (values.at(middle - 1) + values.at(middle)) / 2;
}

} // namespace

QString groupKey(const benchResults &machine)
{
    const QString processor = machine.getCpu().simplified();
    // The programs say "unknown" where they could not find out the processor's name. No measured
    // machine may pass for a modelled one.
    if (processor == QLatin1String("unknown") || isEstimate(processor))
        return {};
    return QStringLiteral("%1 / %2 / %3")
        .arg(processor, machine.getOs(), QString::number(machine.getThreads()));
}

groupVerdict judge(const QVector<countedUpload> &uploads, ruleSet rules)
{
    if (uploads.isEmpty())
        return {};
    const int uploadsNeeded = rules == ruleSet::circle ? 1 : 3;
    QVector<float> clocks;
    QMap<QString, QVector<float>> results;
    groupVerdict verdict;
    verdict.first = std::numeric_limits<qint64>::max();
    for (const countedUpload &upload : uploads) {
        clocks.append(upload.machine.getFrequency());
        verdict.first = std::min(verdict.first, upload.received);
        const QMap<QString, benchResults::test> &tests = upload.machine.getTests();
        for (auto test = tests.begin(); test != tests.end(); ++test) {
            if (test->value > 0)
                results[test.key()].append(test->value);
        }
    }
    const benchResults &one = uploads.first().machine;
    const QString processor = one.getCpu().simplified();
    benchResults machine(processor, one.getOs(), processor, median(clocks), one.getThreads());
    for (auto test = results.begin(); test != results.end(); ++test)
        machine.setTest(test.key(), benchResults::test(median(*test)));
    verdict.sources = uploads.size();
    verdict.beta = machine;
    if (uploads.size() >= uploadsNeeded)
        verdict.normal = machine;
    return verdict;
}
