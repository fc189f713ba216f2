// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/ranking.h"

#include "support/rankedLists.h"

#include <QtTest>

#include <bit>
#include <cmath>
#include <limits>

using namespace ranking;
using namespace rankedLists;

class tst_ranking : public QObject
{
    Q_OBJECT

private slots:
    void numbersOfTheControls();
    void osMatching_data();
    void osMatching();
    void filter_data();
    void filter();
    void tooFewMachines();

    void mergedMean();
    void mergedResults_data();
    void mergedResults();
    void mergedOrder_data();
    void mergedOrder();
    void mergedKeepsTheFirst();
    void mergedAfterTheFilter();
    void mergedLeavesThisMachineOut();
    void mergedOnlyIfWanted();

    void bar_data();
    void bar();
};

void tst_ranking::numbersOfTheControls()
{
    QCOMPARE(int(singleCoreTests), 0);
    QCOMPARE(int(multiCoreTests), 1);
    QCOMPARE(int(allTests), 2);
    QCOMPARE(int(oneTest), 3);
    QCOMPARE(int(mixedDevices), 0);
    QCOMPARE(int(topDevices), 1);
    QCOMPARE(int(mediumDevices), 2);
    QCOMPARE(int(lastDevices), 3);
    QCOMPARE(int(allDevices), 4);
    QCOMPARE(int(androidFlag), 1);
    QCOMPARE(int(linuxFlag), 2);
    QCOMPARE(int(windowsFlag), 4);
}

void tst_ranking::osMatching_data()
{
    QTest::addColumn<QString>("os");
    QTest::addColumn<int>("matchingMask");
    QTest::newRow("android") << QStringLiteral("android") << 1;
    QTest::newRow("linux") << QStringLiteral("linux") << 2;
    QTest::newRow("windows") << QStringLiteral("windows") << 4;
    for (const char *other : {"Android", "Linux", "WINDOWS", "", " linux", "linux ", "linux64",
                              "darwin", "and", "dows", "androidlinuxwindows"})
        QTest::newRow(qPrintable(QStringLiteral("'%1'").arg(QLatin1String(other))))
            << QString::fromLatin1(other) << 0;
    QTest::newRow("none") << QString() << 0;
}

void tst_ranking::osMatching()
{
    QFETCH(QString, os);
    QFETCH(int, matchingMask);
    for (int mask = 0; mask < 8; ++mask)
        QCOMPARE(osMatches(os, mask), (mask & matchingMask) != 0);
    QCOMPARE(osMatches(os, ~7), false);
}

void tst_ranking::filter_data()
{
    QTest::addColumn<int>("mask");
    QTest::addColumn<QString>("userOs");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("all") << 7 << QStringLiteral("windows") << words("w l a you");
    QTest::newRow("none") << 0 << QStringLiteral("windows") << words("you");
    QTest::newRow("android") << 1 << QStringLiteral("windows") << words("a you");
    QTest::newRow("linux") << 2 << QStringLiteral("windows") << words("l you");
    QTest::newRow("windows") << 4 << QStringLiteral("windows") << words("w you");
    QTest::newRow("all but linux") << 5 << QStringLiteral("linux") << words("w a you");
    QTest::newRow("all but windows") << 3 << QStringLiteral("windows") << words("l a you");
    QTest::newRow("a user of something else") << 7 << QStringLiteral("haiku") << words("w l a you");
    QTest::newRow("none, a user without a word") << 0 << QString() << words("you");
}

void tst_ranking::filter()
{
    QFETCH(int, mask);
    QFETCH(QString, userOs);
    QFETCH(QStringList, shown);
    const QVector<benchResults> machines = {
        machineWith(QStringLiteral("a"), QStringLiteral("android"), 1),
        machineWith(QStringLiteral("other"), QStringLiteral("darwin"), 9),
        machineWith(QStringLiteral("w"), QStringLiteral("windows"), 3),
        machineWith(QStringLiteral("Big"), QStringLiteral("Linux"), 9),
        machineWith(QStringLiteral("l"), QStringLiteral("linux"), 2),
        machineWith(QStringLiteral("you"), userOs, 2.5F),
    };
    for (int mode = mixedDevices; mode <= allDevices; ++mode) {
        for (const bool isMerged : {false, true}) {
            choices wanted;
            wanted.osMask = mask;
            wanted.mode = static_cast<selectionMode>(mode);
            wanted.isMerged = isMerged;
            QCOMPARE(names(rankedMachines(machines, usualTests(), wanted)), shown);
        }
    }
}

void tst_ranking::tooFewMachines()
{
    const auto user = measured(machine(QStringLiteral("you"), {{single, 1}}));
    QVERIFY(rankedMachines({}, usualTests(), everything()).isEmpty());
    QVERIFY(rankedMachines({user}, usualTests(), everything()).isEmpty());
    QCOMPARE(rankedMachines({user, user}, usualTests(), everything()).size(), 2);
    QVERIFY(mergedByName({}).isEmpty());
}

void tst_ranking::mergedMean()
{
    const auto merged = mergedByName({
        machine(QStringLiteral("PC-A"), {{single, 10}, {multi, 10}}),
        machine(QStringLiteral("pc-a"), {{single, 20}}),
    });
    QCOMPARE(names(merged), words("PC-A"));
    QCOMPARE(resultOf(merged.first(), single), 15.0F);
    QCOMPARE(resultOf(merged.first(), multi), 5.0F);
    QCOMPARE(merged.first().getTests().size(), 2);
}

void tst_ranking::mergedResults_data()
{
    QTest::addColumn<QVector<resultList>>("members");
    QTest::addColumn<float>("result");
    const auto with = [](float value) { return resultList{{single, value}}; };
    const resultList without = {{multi, 1}};
    using group = QVector<resultList>;
    QTest::newRow("alone") << group{with(7)} << 7.0F;
    QTest::newRow("alone, a third") << group{with(1.0F / 3)} << 1.0F / 3;
    QTest::newRow("a later one only") << group{without, with(10)} << 5.0F;
    QTest::newRow("the last of four only") << group{without, without, without, with(10)} << 2.5F;
    QTest::newRow("the second of three lacks it") << group{with(3), without, with(6)} << 3.0F;
    QTest::newRow("zeros") << group{with(0), with(0)} << 0.0F;
    QTest::newRow("a zero counts") << group{with(0), with(9), with(0)} << 3.0F;
    QTest::newRow("negative") << group{with(-4), with(1)} << -1.5F;
    QTest::newRow("infinite") << group{with(infinity), with(1)} << infinity;
    QTest::newRow("not a number") << group{with(1), with(notANumber)} << notANumber;
    // In single precision and in the order of the list: 44.0666695. The nearest to the mean is one
    // step below it, a sum the other way round one step above.
    QTest::newRow("rounding") << group{with(44.2F), with(83.9F), with(4.1F)}
                              << std::bit_cast<float>(0x42304445U);
}

void tst_ranking::mergedResults()
{
    QFETCH(QVector<resultList>, members);
    QFETCH(float, result);
    QVector<benchResults> machines;
    for (const resultList &results : members)
        machines.append(machine(QStringLiteral("pc"), results));
    const auto merged = mergedByName(machines);
    QCOMPARE(merged.size(), 1);
    QVERIFY2(isSame(resultOf(merged.first(), single), result),
             qPrintable(QString::number(double(resultOf(merged.first(), single)), 'g', 9)));
}

void tst_ranking::mergedOrder_data()
{
    QTest::addColumn<QStringList>("before");
    QTest::addColumn<QStringList>("after");
    QTest::newRow("by name") << words("c a b") << words("a b c");
    QTest::newRow("case does not count") << words("Zebra apple Yak") << words("apple Yak Zebra");
    // In ASCII the line stands between the capital and the small letters.
    QTest::newRow("by the small letters") << words("Z _x Y a_ aB") << words("_x a_ aB Y Z");
    QTest::newRow("text, not numbers") << words("pc10 pc9 PC1") << words("PC1 pc10 pc9");
    QTest::newRow("by code, not by dictionary") << words("ä z Ö o") << words("o z ä Ö");
    QTest::newRow("three groups") << words("b A B a c b") << words("A b c");
    QTest::newRow("letters outside ASCII") << words("Über äh ÄH über") << words("äh Über");
    QTest::newRow("an old letter is another") << words("ſ S") << words("S ſ");
    QTest::newRow("not spelt out") << words("STRASSE straße") << words("STRASSE straße");
}

void tst_ranking::mergedOrder()
{
    QFETCH(QStringList, before);
    QFETCH(QStringList, after);
    QVector<benchResults> machines;
    for (const QString &name : before)
        machines.append(machine(name, {{single, 1}}));
    QCOMPARE(names(mergedByName(machines)), after);
}

void tst_ranking::mergedKeepsTheFirst()
{
    benchResults first(QStringLiteral("Pc"), QStringLiteral("windows"), QStringLiteral("Alpha"),
                       2.5e9F, 6);
    first.setMeasured(true);
    const benchResults second(QStringLiteral("pC"), linuxWord, QStringLiteral("Beta"), 3e9F, 8);
    for (const int copies : {0, 1, 3}) {
        QVector<benchResults> machines = {first};
        machines.insert(1, copies, second);
        const auto merged = mergedByName(machines);
        QCOMPARE(merged.size(), 1);
        QCOMPARE(merged.first().describe(benchResults::fullDescription),
                 QStringLiteral("Pc 6C 2.5 GHz (windows)"));
        QCOMPARE(merged.first().getCpu(), QStringLiteral("Alpha"));
        QVERIFY(merged.first().isMeasured());
        QVERIFY(merged.first().getTests().isEmpty());
    }
}

void tst_ranking::mergedAfterTheFilter()
{
    choices wanted = everything();
    wanted.isMerged = true;
    wanted.osMask = linuxFlag;
    const auto shown =
        rankedMachines({machineWith(QStringLiteral("PC"), QStringLiteral("windows"), 100),
                        machineWith(QStringLiteral("pc"), linuxWord, 10),
                        machineWith(QStringLiteral("Pc"), linuxWord, 20),
                        measured(machineWith(QStringLiteral("you"), linuxWord, 30))},
                       usualTests(), wanted);
    QCOMPARE(names(shown), words("pc you"));
    QCOMPARE(resultOf(shown.first(), single), 15.0F);
    QCOMPARE(shown.first().getScore(), 50.0F);
}

void tst_ranking::mergedLeavesThisMachineOut()
{
    choices wanted = everything();
    wanted.isMerged = true;
    const auto shown = rankedMachines({machineWith(QStringLiteral("PC"), linuxWord, 10),
                                       machineWith(QStringLiteral("zz"), linuxWord, 20),
                                       measured(machineWith(QStringLiteral("pc"), linuxWord, 40))},
                                      usualTests(), wanted);
    QCOMPARE(names(shown), words("zz PC pc"));
    QCOMPARE(resultOf(shown[1], single), 10.0F);
    QCOMPARE(resultOf(shown[2], single), 40.0F);
    QCOMPARE(shown[1].getScore(), 25.0F);
    QCOMPARE(shown[2].getScore(), 100.0F);
}

void tst_ranking::mergedOnlyIfWanted()
{
    const auto shown = rankedMachines({machineWith(QStringLiteral("PC"), linuxWord, 10),
                                       machineWith(QStringLiteral("PC"), linuxWord, 20),
                                       measured(machineWith(QStringLiteral("you"), linuxWord, 40))},
                                      usualTests(), everything());
    QCOMPARE(names(shown), words("PC PC you"));
    QCOMPARE(shown[0].getScore(), 50.0F);
    QCOMPARE(shown[1].getScore(), 25.0F);
}

void tst_ranking::bar_data()
{
    QTest::addColumn<float>("value");
    QTest::addColumn<float>("height");
    QTest::newRow("plain") << 42.5F << 42.5F;
    QTest::newRow("zero") << 0.0F << 0.0001F;
    QTest::newRow("minus zero") << -0.0F << 0.0001F;
    QTest::newRow("negative") << -3.0F << 0.0001F;
    QTest::newRow("not a number") << notANumber << 0.0001F;
    QTest::newRow("infinite") << infinity << infinity;
    QTest::newRow("negative infinite") << -infinity << 0.0001F;
    // Only what is not above 0 is replaced.
    QTest::newRow("tiny") << 1e-6F << 1e-6F;
    QTest::newRow("smallest") << std::numeric_limits<float>::denorm_min()
                              << std::numeric_limits<float>::denorm_min();
}

void tst_ranking::bar()
{
    QFETCH(float, value);
    QFETCH(float, height);
    benchResults byScore = machine(QStringLiteral("pc"), {{single, 5}});
    byScore.setScore(value);
    for (const testKind kind : {singleCoreTests, multiCoreTests, allTests}) {
        QVERIFY(isSame(barValue(byScore, kind, QString()), height));
        QVERIFY(isSame(barValue(byScore, kind, single), height));
    }
    QCOMPARE(barValue(byScore, oneTest, single), 5.0F);
    QCOMPARE(barValue(byScore, oneTest, multi), 0.0001F);
    QCOMPARE(barValue(byScore, oneTest, QStringLiteral("Single")), 0.0001F);
    QCOMPARE(barValue(byScore, oneTest, QString()), 0.0001F);

    benchResults byResult = machine(QStringLiteral("pc"), {{single, value}});
    byResult.setScore(6);
    QVERIFY(isSame(barValue(byResult, oneTest, single), height));
    QCOMPARE(barValue(byResult, allTests, single), 6.0F);
}

QTEST_APPLESS_MAIN(tst_ranking)
#include "tst_ranking.moc"
