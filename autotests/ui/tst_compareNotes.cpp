// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/compareNotes.h"

#include "support/rankedLists.h"

#include <QtTest>

using namespace ranking;
using namespace rankedLists;

namespace
{

const QString first = QStringLiteral("first");
const QString second = QStringLiteral("second");
const QString third = QStringLiteral("third");

/// Two tests for one core, one for all, and one that no score counts.
testList fourTests()
{
    testList tests;
    tests.append({first, false});
    tests.append({second, false});
    tests.append({third, true});
    tests.append({alone, false, true});
    return tests;
}

QVector<benchResults> newcomerAmong(const resultList &own, bool isMeasured = true)
{
    const resultList all = {{first, 1.0F}, {second, 2.0F}, {third, 3.0F}};
    QVector<benchResults> machines = {machine(QStringLiteral("a"), all),
                                      machine(QStringLiteral("b"), all),
                                      machine(QStringLiteral("own"), own)};
    machines.last().setMeasured(isMeasured);
    return machines;
}

} // namespace

Q_DECLARE_METATYPE(benchResults)

class tst_compareNotes : public QObject
{
    Q_OBJECT

private slots:
    void gaps_data();
    void gaps();
    void gapsOfNothing();
    void onGaps_data();
    void onGaps();
    void onEstimates();
};

void tst_compareNotes::gaps_data()
{
    QTest::addColumn<QVector<benchResults>>("machines");
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("isPerClock");
    QTest::addColumn<int>("bars");
    QTest::addColumn<int>("results");
    QTest::addColumn<int>("tests");
    const resultList full = {{first, 1.0F}, {second, 2.0F}, {third, 3.0F}};
    const resultList one = {{first, 1.0F}, {second, 0.0F}, {third, 0.0F}};
    const resultList oneEntry = {{first, 1.0F}};
    QTest::newRow("complete") << newcomerAmong(full) << int(allTests) << false << 0 << 3 << 3;
    QTest::newRow("one result") << newcomerAmong(one) << int(allTests) << false << 3 << 1 << 3;
    QTest::newRow("one result, single core")
        << newcomerAmong(one) << int(singleCoreTests) << false << 3 << 1 << 2;
    QTest::newRow("one result, multi core")
        << newcomerAmong(one) << int(multiCoreTests) << false << 3 << 0 << 1;
    QTest::newRow("that test") << newcomerAmong(one) << int(oneTest) << false << 0 << 0 << 0;
    // Missing entries are left out of scores, so that there is something to compare.
    QTest::newRow("one entry") << newcomerAmong(oneEntry) << int(allTests) << false << 0 << 1 << 3;
    QTest::newRow("one entry, multi core")
        << newcomerAmong(oneEntry) << int(multiCoreTests) << false << 3 << 0 << 1;
    // Another machine is the measure.
    QTest::newRow("not measured") << newcomerAmong(one, false) << int(allTests) << false << 0 << 1
                                  << 3;
    QVector<benchResults> clockless = newcomerAmong(full);
    clockless[0] = machine(QStringLiteral("a"), full, 0.0F);
    QTest::newRow("no clock") << clockless << int(allTests) << true << 1 << 3 << 3;
    QTest::newRow("no clock asked for") << clockless << int(allTests) << false << 0 << 3 << 3;
    QVector<benchResults> resultless = newcomerAmong(full);
    resultless[1] = machine(QStringLiteral("b"), {});
    QTest::newRow("another one's results") << resultless << int(allTests) << false << 1 << 3 << 3;
    QVector<benchResults> negative = newcomerAmong({{first, 1.0F}, {second, -1.0F}, {third, 1.0F}});
    QTest::newRow("negative") << negative << int(allTests) << false << 0 << 2 << 3;
}

void tst_compareNotes::gaps()
{
    QFETCH(QVector<benchResults>, machines);
    QFETCH(int, kind);
    QFETCH(bool, isPerClock);
    const testList tests = fourTests();
    choices wanted;
    wanted.kind = static_cast<testKind>(kind);
    wanted.mode = allDevices;
    wanted.isPerClock = isPerClock;
    const ranking::gaps found = gapsOf(rankedMachines(machines, tests, wanted), tests, wanted);
    QTEST(found.bars, "bars");
    QCOMPARE(found.machines, 3);
    QTEST(found.results, "results");
    QTEST(found.tests, "tests");
}

void tst_compareNotes::gapsOfNothing()
{
    const testList tests = fourTests();
    const ranking::gaps found = gapsOf({}, tests, {});
    QCOMPARE(found.bars, 0);
    QCOMPARE(found.machines, 0);
}

void tst_compareNotes::onGaps_data()
{
    QTest::addColumn<int>("bars");
    QTest::addColumn<int>("results");
    QTest::addColumn<bool>("isOwnMeasure");
    QTest::addColumn<bool>("isPerClock");
    QTest::addColumn<QString>("note");
    const QString missing = QStringLiteral("2 of 21 bars are missing: ");
    QTest::newRow("none") << 0 << 1 << true << false << QString();
    QTest::newRow("one result")
        << 21 << 1 << true << false
        << QStringLiteral("Only 1 of 18 tests has a result on this machine, so it cannot be "
                          "compared: run the full benchmark, or choose that test");
    QTest::newRow("some results")
        << 21 << 7 << true << true
        << QStringLiteral("Only 7 of 18 tests have a result on this machine, so it cannot be "
                          "compared: run the full benchmark, or choose one of those tests");
    QTest::newRow("no result")
        << 21 << 0 << true << false
        << QStringLiteral("None of the 18 tests counted here has a result on this machine, so it "
                          "cannot be compared: run the full benchmark, or choose a test that has "
                          "one");
    QTest::newRow("all results") << 2 << 18 << true << false
                                 << missing + QStringLiteral("there are no results to compare");
    QTest::newRow("another measure")
        << 2 << 1 << false << false << missing + QStringLiteral("there are no results to compare");
    QTest::newRow("per clock") << 2 << 18 << true << true
                               << missing
                                      + QStringLiteral(
                                          "a clock is not known, or results are missing");
}

void tst_compareNotes::onGaps()
{
    QFETCH(int, bars);
    QFETCH(int, results);
    QFETCH(bool, isOwnMeasure);
    QFETCH(bool, isPerClock);
    ranking::gaps found;
    found.bars = bars;
    found.machines = 21;
    found.results = results;
    found.tests = 18;
    QTEST(compareNotes::onGaps(found, isOwnMeasure, isPerClock), "note");
}

void tst_compareNotes::onEstimates()
{
    QVector<benchResults> machines = newcomerAmong({});
    QCOMPARE(compareNotes::onEstimates(machines), QString());
    machines[0] = machine(QStringLiteral("Model (est.)"), {});
    machines[1] = machine(QStringLiteral("(est.) Model"), {});
    QCOMPARE(compareNotes::onEstimates(machines),
             QStringLiteral("1 of 3 bars are modelled estimates (est.), not measured results"));
}

QTEST_MAIN(tst_compareNotes)
#include "tst_compareNotes.moc"
