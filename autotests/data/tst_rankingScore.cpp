// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/ranking.h"

#include "support/rankedLists.h"

#include <QtTest>

#include <bit>
#include <cmath>

using namespace ranking;
using namespace rankedLists;

namespace
{

/// The scores of a machine and of this machine, which is measured, when there is one test.
QVector<float> scoresOf(const benchResults &other, const benchResults &user, const choices &wanted)
{
    const auto shown = rankedMachines({other, user}, usualTests(), wanted);
    QVector<float> scores;
    for (const benchResults &entry : shown)
        scores.append(entry.getScore());
    return scores;
}

} // namespace

class tst_rankingScore : public QObject
{
    Q_OBJECT

private slots:
    void kinds_data();
    void kinds();
    void perClock_data();
    void perClock();
    void scoreToTheLastBit();
    void clockScoreToTheLastBit();
    void reference_data();
    void reference();
    void referenceIsTheFirstMerged();
    void testsThatOneLacks();
    void aTestListedTwice();
};

void tst_rankingScore::kinds_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<float>("score");
    // Twice as fast in the one, half as fast in the other; the test that runs alone never counts.
    QTest::newRow("single core") << int(singleCoreTests) << 200.0F;
    QTest::newRow("multi core") << int(multiCoreTests) << 50.0F;
    QTest::newRow("all") << int(allTests) << 125.0F;
    QTest::newRow("one test") << int(oneTest) << 125.0F;
}

void tst_rankingScore::kinds()
{
    QFETCH(int, kind);
    QFETCH(float, score);
    const resultList others = {{single, 20}, {multi, 20}, {alone, 9000}};
    const resultList mine = {{single, 10}, {multi, 40}, {alone, 1}};
    const auto scores = scoresOf(machine(QStringLiteral("pc"), others),
                                 measured(machine(QStringLiteral("you"), mine)),
                                 everything(static_cast<testKind>(kind)));
    QCOMPARE(scores, QVector<float>({score, 100}));
}

void tst_rankingScore::perClock_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<float>("clock");
    QTest::addColumn<int>("threads");
    QTest::addColumn<float>("userClock");
    QTest::addColumn<int>("userThreads");
    QTest::addColumn<float>("score");
    const int one = singleCoreTests;
    const int many = multiCoreTests;
    const int all = allTests;
    QTest::newRow("single core") << one << 4e9F << 8 << 2e9F << 4 << 100.0F;
    QTest::newRow("multi core") << many << 4e9F << 8 << 2e9F << 4 << 12.5F;
    QTest::newRow("all") << all << 4e9F << 8 << 2e9F << 4 << 56.25F;
    QTest::newRow("one test") << int(oneTest) << 4e9F << 8 << 2e9F << 4 << 56.25F;
    QTest::newRow("no clock") << one << 0.0F << 8 << 2e9F << 4 << infinity;
    QTest::newRow("no clock here") << one << 4e9F << 8 << 0.0F << 4 << 0.0F;
    QTest::newRow("no clocks") << one << 0.0F << 8 << 0.0F << 4 << notANumber;
    QTest::newRow("no threads") << many << 4e9F << 0 << 2e9F << 4 << infinity;
    QTest::newRow("no threads here") << many << 4e9F << 8 << 2e9F << 0 << 0.0F;
    QTest::newRow("no threads at all") << many << 4e9F << 0 << 2e9F << 0 << notANumber;
    QTest::newRow("threads do not count") << one << 4e9F << 0 << 2e9F << 0 << 100.0F;
    QTest::newRow("negative threads") << many << 2e9F << -4 << 2e9F << 4 << -50.0F;
}

void tst_rankingScore::perClock()
{
    QFETCH(int, kind);
    QFETCH(float, clock);
    QFETCH(int, threads);
    QFETCH(float, userClock);
    QFETCH(int, userThreads);
    QFETCH(float, score);
    const resultList others = {{single, 20}, {multi, 20}, {alone, 9000}};
    const resultList mine = {{single, 10}, {multi, 40}, {alone, 1}};
    const auto other = machine(QStringLiteral("pc"), others, clock, threads);
    const auto user = measured(machine(QStringLiteral("you"), mine, userClock, userThreads));
    choices wanted = everything(static_cast<testKind>(kind));
    wanted.isPerClock = true;
    const float found = scoresOf(other, user, wanted).first();
    QVERIFY2(isSame(found, score), qPrintable(QString::number(double(found))));
}

void tst_rankingScore::scoreToTheLastBit()
{
    testList tests;
    for (const QString &name : words("t1 t2 t3"))
        tests.append({name, false});
    const QString names[] = {QStringLiteral("t1"), QStringLiteral("t2"), QStringLiteral("t3")};
    const auto other =
        machine(QStringLiteral("pc"), {{names[0], 79}, {names[1], 52}, {names[2], 31}});
    const auto user =
        measured(machine(QStringLiteral("you"), {{names[0], 50}, {names[1], 24}, {names[2], 41}}));
    // ((79/50 + 52/24) + 31/41) / 3 * 100, rounded to single precision after every step. In double
    // precision, in another order, or with reciprocals, it ends in 6 or 7.
    const auto shown = rankedMachines({other, user}, tests, everything());
    QCOMPARE(std::bit_cast<quint32>(shown.first().getScore()), 0x43161798U);
}

void tst_rankingScore::clockScoreToTheLastBit()
{
    const auto other = machine(QStringLiteral("pc"), {{multi, 13}}, 3.1e9F, 12);
    const auto user = measured(machine(QStringLiteral("you"), {{multi, 84}}, 2.9e9F, 11));
    choices wanted = everything();
    wanted.isPerClock = true;
    // (13 / clock / threads) / (84 / clock / threads) * 100, rounded after every step; other orders
    // end in A.
    QCOMPARE(std::bit_cast<quint32>(scoresOf(other, user, wanted).first()), 0x41545708U);
}

void tst_rankingScore::reference_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<bool>("isMeasured");
    QTest::addColumn<QVector<float>>("scores");
    using list = QVector<float>;
    // Results: android 10, linux 40, linux 20, and 80 here.
    QTest::newRow("this machine") << 7 << true << list{50, 25, 12.5F, 100};
    QTest::newRow("the first") << 7 << false << list{400, 200, 100, 800};
    QTest::newRow("the first that passed") << 2 << false << list{100, 50, 200};
    QTest::newRow("this machine, filtered") << 2 << true << list{50, 25, 100};
    QTest::newRow("none passed") << 0 << false << list{100};
    QTest::newRow("none passed, measured") << 0 << true << list{100};
}

void tst_rankingScore::reference()
{
    QFETCH(int, mask);
    QFETCH(bool, isMeasured);
    QFETCH(QVector<float>, scores);
    benchResults user = machineWith(QStringLiteral("you"), QStringLiteral("windows"), 80);
    user.setMeasured(isMeasured);
    choices wanted = everything();
    wanted.osMask = mask;
    const auto shown =
        rankedMachines({machineWith(QStringLiteral("a"), QStringLiteral("android"), 10),
                        machineWith(QStringLiteral("b"), linuxWord, 40),
                        machineWith(QStringLiteral("c"), linuxWord, 20), user},
                       usualTests(), wanted);
    QVector<float> found;
    for (const benchResults &entry : shown)
        found.append(entry.getScore());
    QCOMPARE(found, scores);
    QCOMPARE(shown.last().isMeasured(), isMeasured);
}

void tst_rankingScore::referenceIsTheFirstMerged()
{
    choices wanted = everything();
    const QVector<benchResults> machines = {
        machineWith(QStringLiteral("b"), linuxWord, 20),
        machineWith(QStringLiteral("A"), linuxWord, 30),
        machineWith(QStringLiteral("a"), linuxWord, 50),
        machineWith(QStringLiteral("you"), linuxWord, 10),
    };
    wanted.isMerged = true;
    const auto merged = rankedMachines(machines, usualTests(), wanted);
    QCOMPARE(names(merged), words("A b you"));
    QCOMPARE(merged[0].getScore(), 100.0F);
    QCOMPARE(merged[1].getScore(), 50.0F);
    QCOMPARE(merged[2].getScore(), 25.0F);
    wanted.isMerged = false;
    const auto apart = rankedMachines(machines, usualTests(), wanted);
    QCOMPARE(names(apart), words("a A b you"));
    QCOMPARE(apart[2].getScore(), 100.0F);
}

void tst_rankingScore::testsThatOneLacks()
{
    const auto user = measured(machine(QStringLiteral("you"), {{single, 10}, {alone, 5}}));
    const auto scoreOf = [&user](const resultList &results) {
        return scoresOf(machine(QStringLiteral("pc"), results), user, everything()).first();
    };
    QCOMPARE(scoreOf({{single, 20}}), 200.0F);
    QCOMPARE(scoreOf({{single, 20}, {multi, 7}}), 200.0F);
    QCOMPARE(scoreOf({{single, 20}, {QStringLiteral("Single"), 7}}), 200.0F);
    QVERIFY(std::isnan(scoreOf({})));
    QVERIFY(std::isnan(scoreOf({{multi, 7}})));
    QVERIFY(std::isnan(scoreOf({{alone, 7}})));
    QVERIFY(std::isnan(scoreOf({{QStringLiteral("Single"), 7}})));
    // A result of 0 is a result.
    QCOMPARE(scoreOf({{single, 0}}), 0.0F);
    const auto zeroUser = measured(machine(QStringLiteral("you"), {{single, 0}}));
    const auto zeroPc = machine(QStringLiteral("pc"), {{single, 0}});
    const auto fastPc = machine(QStringLiteral("pc"), {{single, 3}});
    QVERIFY(std::isnan(scoresOf(zeroPc, zeroUser, everything()).first()));
    QVERIFY(isSame(scoresOf(fastPc, zeroUser, everything()).first(), infinity));
    QVERIFY(std::isnan(scoresOf(fastPc, zeroUser, everything()).last()));
}

void tst_rankingScore::aTestListedTwice()
{
    testList tests;
    tests.append({single, false});
    tests.append({multi, true});
    tests.append({single, false});
    const auto shown =
        rankedMachines({machine(QStringLiteral("pc"), {{single, 4}, {multi, 1}}),
                        measured(machine(QStringLiteral("you"), {{single, 1}, {multi, 1}}))},
                       tests, everything());
    QCOMPARE(shown.first().getScore(), 300.0F);
}

QTEST_APPLESS_MAIN(tst_rankingScore)
#include "tst_rankingScore.moc"
