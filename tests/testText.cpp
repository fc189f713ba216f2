// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/testText.h"

#include "tests/suiteFacts.h"

#include <algorithm>

namespace
{

/// "MPixel" as "millions of pixels".
QString unitInWords(const QString &unit)
{
    const QString scale = unit.startsWith(QLatin1Char('K')) ? QStringLiteral("thousands")
                                                            : QStringLiteral("millions");
    QString things = unit.mid(1).toLower();
    if (!things.endsWith(QLatin1Char('s')))
        things += QLatin1Char('s');
    return QStringLiteral("%1 of %2").arg(scale, things);
}

} // namespace

QString testText(const testFacts &test)
{
    const QString unit = QString::fromLatin1(test.workload.unit);
    return QStringLiteral("%1 The result is in %2/s, %3 per second on %4: higher is better.")
        .arg(QString::fromUtf8(test.workload.description), unit, unitInWords(unit),
             test.isMulticore() ? QStringLiteral("all cores") : QStringLiteral("one core"));
}

QString testText(const QString &name)
{
    const std::vector<testFacts> &all = suiteFacts();
    const auto test = std::find_if(all.begin(), all.end(), [&name](const testFacts &one) {
        return name == QString::fromLatin1(one.name);
    });
    return test == all.end() ? QString() : testText(*test);
}
