// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/suite.h"

#include "rounds.h"
#include "support/allocationWatch.h"
#include "support/textLog.h"

#include "tests/knownFrames.h"
#include "tests/suiteFacts.h"

#include <QtTest>

#include <algorithm>

class tst_suite : public QObject
{
    Q_OBJECT

private slots:
    void order();
    void facts_data() { everyTest_data(); }
    void facts();
    void printTargets();
    void everyTest_data();
    void failingAllocations_data() { everyTest_data(); }
    void failingAllocations();
    void failingRounds_data() { everyTest_data(); }
    void failingRounds();
    void oddFrames_data() { everyTest_data(); }
    void oddFrames();
};

/// Results are stored under these names and runs have this order, so both are written down twice.
void tst_suite::order()
{
    QStringList knownNames;
    for (const knownFrame &known : knownFrames())
        knownNames << QString::fromUtf8(known.test);
    knownNames.removeDuplicates();
    QStringList names;
    for (const auto &test : makeSuite(nullptr))
        names << test->getName();
    QVERIFY2(names == knownNames,
             qPrintable(QStringLiteral("tests/knownFrames.cpp does not have the tests of "
                                       "tests/suiteTable.h in their order:\n%1\n%2")
                            .arg(knownNames.join(QLatin1Char('|')), names.join(QLatin1Char('|')))));
}

void tst_suite::facts()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    const testFacts &facts = suiteFacts()[std::size_t(index)];
    QCOMPARE(QString::fromUtf8(facts.name), test->getName());
    QCOMPARE(QString::fromUtf8(facts.workload.unit), test->getUnit());
    QCOMPARE(facts.isMulticore(), test->isMulticore());
    QCOMPARE(facts.isMulticore(), test->getName().contains(QStringLiteral("(multicore)")));
    QCOMPARE(!facts.isInFullRuns(), test->isSingleOnly());
    QVERIFY(
        QStringList({QStringLiteral("M"), QStringLiteral("K")}).contains(test->getUnit().left(1)));
    // Two sentences, with the full stops that end them.
    const QString description = QString::fromUtf8(facts.workload.description);
    QCOMPARE(description.count(QStringLiteral(". ")) + 1, 2);
    QVERIFY(description.endsWith(QLatin1Char('.')));
    QVERIFY2(!facts.isInFullRuns() || facts.workload.demand.instructions > 0,
             "the model of machines needs the demand of a test in full runs");
}

/// The rotozoomers alone are handed the print hook.
void tst_suite::printTargets()
{
    textLog log;
    for (const auto &test : makeSuite(&log)) {
        log.text.clear();
        test->print(QStringLiteral("text"));
        const bool isRotozoom = test->getName().startsWith(QStringLiteral("rotozoom"));
        QCOMPARE(log.text, isRotozoom ? QStringLiteral("text") : QString());
    }
}

void tst_suite::everyTest_data()
{
    QTest::addColumn<int>("index");
    const suite tests = makeSuite(nullptr);
    for (std::size_t i = 0; i < tests.size(); ++i)
        QTest::addRow("%s", qPrintable(tests[i]->getName())) << int(i);
}

void tst_suite::failingAllocations()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    int needed = 0;
    {
        const allocationWatch watch;
        QVERIFY(test->setup(30, 20));
        needed = watch.getAsked();
        QVERIFY(needed >= 1);
        test->release();
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(!test->getBuffer());
    }
    for (int failing = 0; failing < needed; ++failing) {
        const allocationWatch watch(failing);
        QVERIFY(!test->setup(30, 20));
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(!test->getBuffer());
        test->release();
    }
    QVERIFY(test->setup(30, 20));
    runRounds(*test, 1);
}

/// A round without its memory does nothing and says so, until the next set-up.
void tst_suite::failingRounds()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    QVERIFY(test->setup(512, 512));
    int needed = 0;
    {
        const allocationWatch watch;
        runRounds(*test, 1);
        needed = watch.getAsked();
        QCOMPARE(watch.getHeld(), 0);
    }
    for (int failing = 0; failing < needed; ++failing) {
        const allocationWatch watch(failing);
        runRounds(*test, 1);
        QVERIFY(test->hasFailed());
        QCOMPARE(watch.getHeld(), 0);
        QVERIFY(frameOf(*test) == blackFrame(512, 512));
        workMemory::setObserver(nullptr);
        QVERIFY(test->setup(512, 512));
        QVERIFY(!test->hasFailed());
    }
    runRounds(*test, 2);
    QVERIFY(!test->hasFailed());
    if (needed > 0)
        QVERIFY(frameOf(*test) != blackFrame(512, 512));
}

void tst_suite::oddFrames()
{
    QFETCH(int, index);
    const auto test = std::move(makeSuite(nullptr)[std::size_t(index)]);
    for (const frameSize &size : oddSizes) {
        QVERIFY(test->setup(size.width, size.height));
        runRounds(*test, 2);
        QCOMPARE(test->getWidth(), size.width);
        QCOMPARE(test->getHeight(), size.height);
    }
}

QTEST_APPLESS_MAIN(tst_suite)
#include "tst_suite.moc"
