// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/rankedTests.h"

#include "engine/testBase.h"

QVector<ranking::rankedTest> rankedTestsOf(const QVector<testBase *> &tests)
{
    QVector<ranking::rankedTest> ranked;
    for (const testBase *test : tests)
        ranked.append({test->getName(), test->isMulticore(), test->isSingleOnly()});
    return ranked;
}
