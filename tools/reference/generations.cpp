// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/reference/generations.h"

#include "tools/reference/coreFamilies.h"
#include "tools/reference/referenceModel.h"

#include <QStringList>

namespace reference
{

namespace
{

/// One core of this kind at 1 GHz, with more memory bandwidth than it can use.
machine atOneGigahertz(const QString &coreName)
{
    machine m;
    m.coreName = coreName;
    m.cores = 1;
    m.threads = 1;
    m.nominalMhz = 1000;
    m.boostMhz = 1000;
    m.bandwidth = 1e9;
    return m;
}

} // namespace

outcome<QByteArray> generationTable(const tables &facts)
{
    const auto factors = calibrationFactors(facts);
    if (!factors)
        return failure(factors.error());
    QString table = QStringLiteral("test\tfamily\tcore\tyear\tresult at 1 GHz\n");
    for (int i = 0; i < factors->size(); ++i) {
        const modelledTest &test = modelledTests().at(i);
        if (test.multicore)
            continue;
        for (const coreFamily &family : coreFamilies()) {
            for (const QString &name : family.cores) {
                const double result = estimate(test, atOneGigahertz(name), facts, factors->at(i));
                const QStringList cells = {test.name, QString::fromLatin1(family.name), name,
                                           QString::number(facts.cores.value(name).year),
                                           QString::number(result)};
                table += cells.join(QLatin1Char('\t')) + QLatin1Char('\n');
            }
        }
    }
    return table.toUtf8();
}

} // namespace reference
