// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchResults.h"

#include "engine/machineProbe.h"

#include <QtTest>

#include <optional>

namespace
{

benchResults lab7()
{
    return {QStringLiteral("LAB7"), QStringLiteral("windows"), QStringLiteral("Some CPU "), 3.4e9F,
            8};
}

const machineProbe testProbe([] { return processorInfo{"Some CPU @ 3.40GHz", 3400U}; });
const machineProbe silentProbe([] { return processorInfo{}; });

} // namespace

class tst_benchResults : public QObject
{
    Q_OBJECT

private slots:
    void describe_data();
    void describe();
    void namesWithPlaceholders();
    void tests();
    void defaultResultIsZero();
    void copiesAreIndependent();
    void thisMachine();
    void unknownMachine();
    void workingValues();
};

void tst_benchResults::describe_data()
{
    QTest::addColumn<float>("clock");
    QTest::addColumn<int>("style");
    QTest::addColumn<QString>("text");
    QTest::newRow("full") << 3.4e9F << 0 << QStringLiteral("LAB7 8C 3.4 GHz (windows)");
    QTest::newRow("name") << 3.4e9F << 1 << QStringLiteral("LAB7");
    QTest::newRow("processor") << 3.4e9F << 2 << QStringLiteral("Some CPU  X8  3.4 GHz");
    QTest::newRow("other") << 3.4e9F << 3 << QString();
    QTest::newRow("negative") << 3.4e9F << -1 << QString();
    QTest::newRow("full, no clock") << 0.0F << 0 << QStringLiteral("LAB7 8C (windows)");
    QTest::newRow("processor, no clock") << 0.0F << 2 << QStringLiteral("Some CPU  X8 ");
    QTest::newRow("six digits") << 2.3456789e9F << 0
                                << QStringLiteral("LAB7 8C 2.34568 GHz (windows)");
}

void tst_benchResults::describe()
{
    QFETCH(float, clock);
    QFETCH(int, style);
    const benchResults machine(QStringLiteral("LAB7"), QStringLiteral("windows"),
                               QStringLiteral("Some CPU "), clock, 8);
    QTEST(machine.describe(benchResults::descriptionStyle(style)), "text");
}

void tst_benchResults::namesWithPlaceholders()
{
    const benchResults machine(QStringLiteral("%4 %1"), QStringLiteral("%2"), QStringLiteral("%3"),
                               1e9F, 2);
    QCOMPARE(machine.describe(benchResults::fullDescription),
             QStringLiteral("%4 %1 2C 1 GHz (%2)"));
    QCOMPARE(machine.describe(benchResults::processorDescription), QStringLiteral("%3 X2  1 GHz"));
}

void tst_benchResults::tests()
{
    benchResults machine = lab7();
    QVERIFY(!machine.findTest(QStringLiteral("mandel")));
    machine.setTest(QStringLiteral("mandel"), benchResults::test(1.5F));
    machine.setTest(QStringLiteral("lines"), benchResults::test(4.0F));
    machine.setTest(QStringLiteral("mandel"), benchResults::test(2.5F));
    QCOMPARE(machine.getTests().keys(),
             QStringList({QStringLiteral("lines"), QStringLiteral("mandel")}));
    QVERIFY(machine.findTest(QStringLiteral("mandel")));
    QCOMPARE(machine.findTest(QStringLiteral("mandel"))->value, 2.5F);
    QVERIFY(!machine.findTest(QStringLiteral("Mandel")));
    machine.findTest(QStringLiteral("mandel"))->value = 7;
    QCOMPARE(machine.getTests().value(QStringLiteral("mandel")).value, 7.0F);
}

void tst_benchResults::defaultResultIsZero()
{
    QCOMPARE(benchResults::test().value, 0.0F);
}

void tst_benchResults::copiesAreIndependent()
{
    benchResults first = lab7();
    first.setTest(QStringLiteral("mandel"), benchResults::test(1));
    benchResults second = first;
    second.findTest(QStringLiteral("mandel"))->value = 2;
    second.setScore(55);
    QCOMPARE(first.findTest(QStringLiteral("mandel"))->value, 1.0F);
    QCOMPARE(first.getScore(), 0.0F);
    first = second;
    QCOMPARE(first.findTest(QStringLiteral("mandel"))->value, 2.0F);
}

void tst_benchResults::thisMachine()
{
    qputenv("COMPUTERNAME", "LAB%1");
    const benchResults machine = testProbe.record();
    qunsetenv("COMPUTERNAME");
    QCOMPARE(machine.getName(), QStringLiteral("LAB%1"));
    QCOMPARE(machine.getOs(), QStringLiteral(FENNICK_EXPECTED_OS_WORD));
    QCOMPARE(machine.getCpu(), QStringLiteral("Some CPU "));
    QCOMPARE(machine.getFrequency(), 3.4e9F);
    QCOMPARE(machine.getThreads(), testProbe.getThreadCount());
    QVERIFY(!machine.isMeasured());
    QVERIFY(machine.getTests().isEmpty());
}

void tst_benchResults::unknownMachine()
{
    qunsetenv("COMPUTERNAME");
    const benchResults machine = silentProbe.record();
    QCOMPARE(machine.getName(), QStringLiteral("your machine"));
    QCOMPARE(machine.getCpu(), QStringLiteral("unknown"));
    QCOMPARE(machine.getFrequency(), 0.0F);
    QVERIFY(!machine.describe(benchResults::fullDescription).contains(QStringLiteral("GHz")));
}

void tst_benchResults::workingValues()
{
    benchResults machine = lab7();
    QCOMPARE(machine.getScore(), 0.0F);
    QVERIFY(!machine.isSelected());
    machine.setScore(12.5F);
    machine.setSelected(true);
    machine.setMeasured(true);
    QCOMPARE(machine.getScore(), 12.5F);
    QVERIFY(machine.isSelected());
    QVERIFY(machine.isMeasured());
}

QTEST_APPLESS_MAIN(tst_benchResults)
#include "tst_benchResults.moc"
