// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/placing.h"

#include "support/rankedLists.h"

#include <QtTest>

using namespace rankedLists;

class tst_placing : public QObject
{
    Q_OBJECT

private slots:
    void places_data();
    void places();
    void ofOneTest();
    void nothingToPlace();
    void missing();
    void measure();
};

void tst_placing::places_data()
{
    QTest::addColumn<QVector<float>>("others");
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("machines");
    QTest::addColumn<int>("percent"); // -1 for none
    using list = QVector<float>;
    // This machine has 20.
    QTest::newRow("best") << list({10, 5, 1}) << 1 << 4 << 100;
    QTest::newRow("middle") << list({10, 30, 40}) << 3 << 4 << 33;
    QTest::newRow("last") << list({30, 40}) << 3 << 3 << 0;
    QTest::newRow("equal") << list({20, 30, 20}) << 2 << 4 << 0;
    QTest::newRow("rounded down") << list({10, 10, 30}) << 2 << 4 << 66;
    QTest::newRow("others without results") << list({notANumber, 0, infinity, 30}) << 2 << 2 << 0;
    QTest::newRow("alone") << list({notANumber}) << 1 << 1 << -1;
}

void tst_placing::places()
{
    QFETCH(QVector<float>, others);
    QVector<benchResults> machines;
    for (const float score : others) {
        machines.append(machine(QStringLiteral("other"), {}));
        machines.last().setScore(score);
    }
    machines.append(machine(QStringLiteral("own"), {}));
    machines.last().setScore(20);
    const auto found = placingOf(machines, ranking::allTests);
    QVERIFY(found);
    QTEST(found->place, "place");
    QTEST(found->machines, "machines");
    QTEST(found->percentSlower().value_or(-1), "percent");
}

void tst_placing::ofOneTest()
{
    const QVector<benchResults> machines = {
        machine(QStringLiteral("a"), {{single, 3}, {multi, 1}}),
        machine(QStringLiteral("b"), {{multi, 9}}),
        machine(QStringLiteral("own"), {{single, 2}, {multi, 5}})};
    const auto one = placingOf(machines, ranking::oneTest, single);
    QCOMPARE(one->place, 2);
    QCOMPARE(one->machines, 2);
    const auto all = placingOf(machines, ranking::oneTest, multi);
    QCOMPARE(all->place, 2);
    QCOMPARE(all->machines, 3);
    QVERIFY(!placingOf(machines, ranking::oneTest, alone));
}

void tst_placing::nothingToPlace()
{
    QVERIFY(!placingOf({}, ranking::allTests));
    for (const float score : {notANumber, infinity, 0.0F, -1.0F}) {
        QVector<benchResults> machines = {machine(QStringLiteral("own"), {})};
        machines.last().setScore(score);
        QVERIFY(!placingOf(machines, ranking::allTests));
    }
}

void tst_placing::missing()
{
    const benchResults own = machine(QStringLiteral("own"), {{single, 2}, {multi, 0}});
    QCOMPARE(ranking::missingResults(own, usualTests(), ranking::allTests), QStringList(multi));
    QCOMPARE(ranking::missingResults(own, usualTests(), ranking::singleCoreTests), QStringList());
    QCOMPARE(ranking::missingResults(machine(QStringLiteral("new"), {}), usualTests(),
                                     ranking::allTests),
             QStringList({single, multi})); // the one that no score counts is not missed
}

void tst_placing::measure()
{
    QVector<benchResults> machines = {machine(QStringLiteral("first"), {{single, 10}}),
                                      machine(QStringLiteral("best"), {{single, 40}}),
                                      machine(QStringLiteral("own"), {{single, 20}})};
    ranking::rankedList ranked = ranking::rankedAll(machines, usualTests(), everything());
    QCOMPARE(ranked.measure.getName(), QStringLiteral("first"));
    QVERIFY(!ranked.isOwnMeasure);
    machines.last().setMeasured(true);
    ranked = ranking::rankedAll(machines, usualTests(), everything());
    QCOMPARE(ranked.measure.getName(), QStringLiteral("own"));
    QVERIFY(ranked.isOwnMeasure);
    QCOMPARE(ranked.machines.first().getScore(), 200.0F);
}

QTEST_APPLESS_MAIN(tst_placing)
#include "tst_placing.moc"
