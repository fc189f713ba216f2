// SPDX-License-Identifier: GPL-3.0-or-later
#include "ui/chartContent.h"

#include "support/fakeTest.h"
#include "support/rankedLists.h"

#include <QtTest>

using namespace rankedLists;

namespace
{

const QString colors = QStringLiteral("colors ");
const QString mandel = QStringLiteral("mandel (multicore)");

/// Machines with one test for one core and one for all, ranked over fakes.
struct contentFixture {
    contentFixture() { multi.multicore = true; }

    static benchResults result(const QString &name, float first, float second)
    {
        return machine(name, {{colors, first}, {mandel, second}});
    }
    chartContent content() { return contentOf(machines, {&one, &multi}, choice); }

    fakeTest one{colors, nullptr};
    fakeTest multi{mandel, nullptr};
    QVector<benchResults> machines = {
        result(QStringLiteral("a"), 10, 10), result(QStringLiteral("b"), 40, 40),
        result(QStringLiteral("c"), 30, 30), measured(result(QStringLiteral("own"), 20, 20))};
    chartChoice choice{everything(), QStringLiteral("combined"), benchResults::nameDescription};
};

} // namespace

class tst_chartContent : public QObject
{
    Q_OBJECT

private slots:
    void bars();
    void standing_data();
    void standing();
    void whoIsTheMeasure();
    void missingTestsAreNamed();
    void barlessMachinesAreNamed();
    void axisTitles();
    void table();
    void tableStaysATable();
    void tableOfOneTest();
    void resultsWithUnits();
};

void tst_chartContent::bars()
{
    contentFixture f;
    const chartContent content = f.content();
    QStringList labels;
    for (const chartBar &bar : content.bars)
        labels.append(bar.label);
    QCOMPARE(labels, words("b c a") << QStringLiteral("[you] own"));
    QCOMPARE(content.bars.first().value, 200.0);
    QVERIFY(content.bars.first().isResult);
    QCOMPARE(content.unit, QStringLiteral("%"));
    f.machines.resize(1);
    QVERIFY(f.content().isEmpty());
}

void tst_chartContent::standing_data()
{
    QTest::addColumn<float>("own");
    QTest::addColumn<QString>("standing");
    const QString measure = QStringLiteral("; 100 = this machine");
    QTest::newRow("best") << 50.0F << QStringLiteral("place 1 of 4, faster than 100 %") + measure;
    QTest::newRow("third") << 20.0F << QStringLiteral("place 3 of 4, faster than 33 %") + measure;
    QTest::newRow("equal") << 30.0F << QStringLiteral("place 2 of 4, faster than 33 %") + measure;
    QTest::newRow("last") << 1.0F << QStringLiteral("place 4 of 4, faster than 0 %") + measure;
}

void tst_chartContent::standing()
{
    QFETCH(float, own);
    contentFixture f;
    f.machines.last() = measured(contentFixture::result(QStringLiteral("own"), own, own));
    QTEST(f.content().standing, "standing");
    // The place is among all machines, however few of them are shown.
    f.choice.wanted.mode = ranking::topDevices;
    f.choice.wanted.count = 1;
    QTEST(f.content().standing, "standing");
    f.choice.wanted.kind = ranking::oneTest;
    f.choice.title = colors;
    QVERIFY(!f.content().standing.contains(QStringLiteral("100 =")));
    QVERIFY(f.content().standing.startsWith(QStringLiteral("place ")));
}

void tst_chartContent::whoIsTheMeasure()
{
    contentFixture f;
    f.machines.last().setMeasured(false);
    QCOMPARE(f.content().standing, QStringLiteral("place 3 of 4, faster than 33 %; 100 = a"));
    QCOMPARE(f.content().axisTitle, QStringLiteral("% of a"));
}

void tst_chartContent::missingTestsAreNamed()
{
    contentFixture f;
    f.machines.last() = measured(contentFixture::result(QStringLiteral("own"), 20, 0));
    QCOMPARE(f.content().standing,
             QStringLiteral("no place: this machine has no result of mandel (multicore); run the "
                            "full benchmark; 100 = this machine"));
    // A score of fewer tests than everybody's is a number, but no place.
    f.machines.last() = measured(machine(QStringLiteral("own"), {{colors, 20}}));
    QVERIFY(f.content().standing.startsWith(
        QStringLiteral("no place: this machine has no result of mandel (multicore); run ")));
    f.choice.wanted.kind = ranking::singleCoreTests;
    QVERIFY(f.content().standing.startsWith(QStringLiteral("place 3 of 4")));
    f.choice.wanted.kind = ranking::oneTest;
    f.choice.title = mandel;
    QVERIFY(f.content().standing.startsWith(
        QStringLiteral("no place: this machine has no result to compare; run the full benchmark")));
}

void tst_chartContent::barlessMachinesAreNamed()
{
    contentFixture f;
    f.machines[0] = contentFixture::result(QStringLiteral("broken"), notANumber, 10);
    QVERIFY(f.content().standing.endsWith(QStringLiteral("; without a bar: broken")));
    f.machines[1] = contentFixture::result(QStringLiteral("endless"), infinity, 10);
    QVERIFY(f.content().standing.endsWith(QStringLiteral("; without a bar: endless, broken")));
    f.choice.wanted.kind = ranking::oneTest;
    f.choice.title = mandel;
    QVERIFY(!f.content().standing.contains(QStringLiteral("without")));
}

void tst_chartContent::axisTitles()
{
    contentFixture f;
    QCOMPARE(f.content().axisTitle, QStringLiteral("% of this machine"));
    f.choice.wanted.kind = ranking::oneTest;
    f.choice.title = colors;
    QCOMPARE(f.content().axisTitle, QStringLiteral("MFakes/s"));
}

void tst_chartContent::table()
{
    contentFixture f;
    f.machines[1] = machine(QStringLiteral("Model (est.)"), {}, 0, 8);
    f.choice.labels = benchResults::processorDescription;
    const QStringList lines = tableOf(f.content()).split(QLatin1Char('\n'));
    QCOMPARE(lines.at(0), QStringLiteral("machine\tprocessor\tthreads\tclock (GHz)\tsystem\t"
                                         "combined (% of this machine)"));
    QCOMPARE(lines.at(1), QStringLiteral("c\tcpu of c\t1\t1\tlinux\t150"));
    QCOMPARE(lines.at(3), QStringLiteral("Model (est.)\tcpu of Model (est.)\t8\t\tlinux\t"));
    QCOMPARE(lines.at(4), QStringLiteral("[you] own\tcpu of own\t1\t1\tlinux\t100"));
    QCOMPARE(lines.at(5), QString()); // ends with its last line
    QCOMPARE(lines.size(), 6);
}

void tst_chartContent::tableStaysATable()
{
    contentFixture f;
    f.machines[1] = contentFixture::result(QStringLiteral("tab\tand\nline"), 40, 40);
    const QStringList lines = tableOf(f.content()).split(QLatin1Char('\n'));
    QCOMPARE(lines.at(1).split(QLatin1Char('\t')).size(), 6);
    QVERIFY(lines.at(1).startsWith(QStringLiteral("tab and line\t")));
}

void tst_chartContent::tableOfOneTest()
{
    contentFixture f;
    f.choice.wanted.kind = ranking::oneTest;
    f.choice.title = mandel;
    const QString table = tableOf(f.content());
    QVERIFY(table.section(QLatin1Char('\n'), 0, 0)
                .endsWith(QStringLiteral("\tmandel (multicore) [you: 20 MFakes] (MFakes/s)")));
    QVERIFY(table.contains(QStringLiteral("b\tcpu of b\t1\t1\tlinux\t40\n")));
}

void tst_chartContent::resultsWithUnits()
{
    contentFixture f;
    const benchResults own = contentFixture::result(QStringLiteral("own"), 12.5F, 0);
    QCOMPARE(resultsAsText(own, {&f.one, &f.multi}),
             QStringLiteral("own 1C 1 GHz (linux)\ncolors: 12.5 MFakes/s\n"
                            "mandel (multicore): no result\n"));
    QCOMPARE(resultsAsTable(own, {&f.one, &f.multi}),
             QStringLiteral("test\tresult\tunit\ncolors\t12.5\tMFakes/s\n"
                            "mandel (multicore)\t\tMFakes/s\n"));
}

QTEST_APPLESS_MAIN(tst_chartContent)
#include "tst_chartContent.moc"
