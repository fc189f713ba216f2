// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/uploadCheck.h"

#include "data/benchReader.h"
#include "data/benchXml.h"
#include "server/ceilings.h"
#include "server/rules/processorName.h"

#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <algorithm>
#include <cmath>

namespace
{

constexpr int maximumThreads = 4096;
constexpr float maximumClock = 2e10F; // Hz

bool isPlainName(const QString &name)
{
    return name.size() <= maximumNameLength && std::all_of(name.begin(), name.end(), [](QChar c) {
               return c.category() != QChar::Other_Control && c.category() != QChar::Separator_Line
                      && c.category() != QChar::Separator_Paragraph;
           });
}

tl::unexpected<uploadRefusal> refusal(const char *kind, const QString &reason,
                                      bool isReadable = true)
{
    return tl::unexpected(uploadRefusal{reason, kind, isReadable});
}

using checked = tl::expected<void, uploadRefusal>;

checked checkResults(const QMap<QString, benchResults::test> &tests)
{
    for (auto test = tests.begin(); test != tests.end(); ++test) {
        const auto ceiling = resultCeilings().constFind(test.key());
        if (ceiling == resultCeilings().constEnd()) {
            return refusal(
                "unknown test",
                QStringLiteral("there is no test '%1'").arg(test.key().left(maximumNameLength)));
        }
        // As it is stored, with six digits: what is accepted now must be so when it is read again.
        const float value = QString::number(static_cast<double>(test->value)).toFloat();
        if (!(value >= 0 && value < *ceiling)) {
            return refusal("impossible result",
                           QStringLiteral("the result of '%1' must be at least 0 and below %2")
                               .arg(test.key(), QString::number(static_cast<double>(*ceiling))));
        }
    }
    return {};
}

checked checkFacts(const benchResults &machine)
{
    const QString os = machine.getOs();
    if (os != QLatin1String("windows") && os != QLatin1String("linux")
        && os != QLatin1String("android")) {
        return refusal("operating system",
                       QStringLiteral("the operating system must be windows, linux or android"));
    }
    if (!isPlainName(machine.getName()) || !isPlainName(machine.getCpu())) {
        return refusal(
            "name",
            QStringLiteral("names must have at most %1 characters and no control characters")
                .arg(maximumNameLength));
    }
    if (machine.getCpu().trimmed().isEmpty())
        return refusal("name", QStringLiteral("the processor has no name"));
    if (machine.getThreads() < 1 || machine.getThreads() > maximumThreads) {
        return refusal("threads",
                       QStringLiteral("the thread count must be from 1 to %1").arg(maximumThreads));
    }
    if (!(machine.getFrequency() >= 0 && machine.getFrequency() <= maximumClock))
        return refusal("clock", QStringLiteral("the clock must be from 0 to 20 GHz"));
    return checkResults(machine.getTests());
}

} // namespace

outcome<void> checkMachine(const benchResults &machine)
{
    return checkFacts(machine).map_error(
        [](const uploadRefusal &refused) { return refused.reason; });
}

tl::expected<benchResults, uploadRefusal> checkUpload(const QByteArray &xml)
{
    if (xml.trimmed().isEmpty())
        return refusal("empty", QStringLiteral("there are no results in this upload"), false);
    QXmlStreamReader stream(xml);
    QVector<benchResults> machines;
    benchReader reader(machines);
    while (!stream.atEnd()) {
        stream.readNext();
        if (const std::optional<benchFault> fault = reader.take(stream))
            return refusal("format", fault->sentence());
    }
    if (stream.hasError()) {
        return refusal("no XML",
                       QStringLiteral("the results are not well-formed XML: line %1: %2")
                           .arg(QString::number(stream.lineNumber()), stream.errorString()),
                       false);
    }
    if (machines.size() != 1) {
        return refusal("number of machines",
                       QStringLiteral("there must be exactly one machine in an upload"));
    }
    const benchResults &machine = machines.first();
    if (const checked facts = checkFacts(machine); !facts)
        return tl::unexpected(facts.error());
    if (const auto name = publishedProcessorName(machine.getCpu()); !name)
        return refusal("processor's name", name.error());
    return machine;
}

QByteArray canonicalXml(const benchResults &machine)
{
    QByteArray content;
    QXmlStreamWriter xml(&content);
    writeMachine(xml, machine);
    return content;
}

bool isAllZero(const benchResults &machine)
{
    const QMap<QString, benchResults::test> &tests = machine.getTests();
    return std::none_of(tests.begin(), tests.end(),
                        [](const benchResults::test &test) { return test.value > 0; });
}
