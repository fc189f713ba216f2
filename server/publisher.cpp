// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/publisher.h"

#include "data/benchXml.h"
#include "data/estimate.h"

#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>

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

void publisher::add(const storedUpload &upload)
{
    if (upload.state == QLatin1String("withdrawn") || upload.isEmpty)
        return;
    const benchResults machine = uploadedMachine(upload);
    const QString processor = machine.getCpu().simplified();
    // The programs say "unknown" where they could not find out the processor's name. No measured
    // machine may pass for a modelled one.
    if (processor == QLatin1String("unknown") || isEstimate(processor))
        return;
    group &own = groups[{processor, machine.getOs(), machine.getThreads()}];
    ++own.uploads;
    own.clocks.append(machine.getFrequency());
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    for (auto test = tests.begin(); test != tests.end(); ++test) {
        if (test->value > 0)
            own.results[test.key()].append(test->value);
    }
}

QVector<benchResults> publisher::machines(int uploadsNeeded) const
{
    QVector<benchResults> measured;
    QSet<QString> processors;
    for (auto entry = groups.begin(); entry != groups.end(); ++entry) {
        if (entry->uploads < uploadsNeeded)
            continue;
        const auto &[processor, os, threads] = entry.key();
        benchResults machine(processor, os, processor, median(entry->clocks), threads);
        for (auto test = entry->results.begin(); test != entry->results.end(); ++test)
            machine.setTest(test.key(), benchResults::test(median(*test)));
        measured.append(machine);
        processors.insert(processor);
    }
    QVector<benchResults> all;
    std::copy_if(builtIn.begin(), builtIn.end(), std::back_inserter(all),
                 [&](const benchResults &machine) {
                     return !isEstimate(machine.getName())
                            || !processors.contains(machine.getCpu().simplified());
                 });
    return all + measured;
}

QByteArray publisher::list(bool isBeta) const
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    xml.setAutoFormatting(true);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("Fennick"));
    for (const benchResults &machine : machines(isBeta ? 1 : uploadsForTheNormalList))
        writeMachine(xml, machine);
    xml.writeEndDocument();
    return qCompress(content);
}
