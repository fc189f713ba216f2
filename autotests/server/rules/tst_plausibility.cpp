// SPDX-License-Identifier: GPL-3.0-or-later
#include "server/rules/plausibility.h"

#include "data/builtInList.h"

#include "support/wholeRuns.h"

#include <QFile>
#include <QtTest>

#include <functional>

Q_DECLARE_METATYPE(benchResults)

namespace
{

const QString mandel = QStringLiteral("mandel");
const QString allMandel = QStringLiteral("mandel (multicore)");
const QString cpu = QStringLiteral("A CPU");

benchResults changed(const QString &test, float factor, benchResults machine = wholeRun(cpu))
{
    machine.findTest(test)->value *= factor;
    return machine;
}

/// One test at another clock.
benchResults at(float clock, float speed)
{
    const QString dithered = QStringLiteral("rotozoom 'dithered'");
    benchResults machine(QString(), QStringLiteral("linux"), cpu, clock, 4);
    machine.setTest(dithered, wholeRun(cpu, speed).getTests().value(dithered));
    return machine;
}

/// One test with one core and with four threads.
benchResults both(float ratio)
{
    benchResults machine(QString(), QStringLiteral("linux"), cpu, 2e9F, 4);
    machine.setTest(mandel, benchResults::test(2));
    machine.setTest(allMandel, benchResults::test(2 * ratio));
    return machine;
}

/// The rows of the table of full runs in docs/figures.md: a test's name and its three results.
QVector<benchResults> documentedRuns()
{
    QFile file(QStringLiteral(FENNICK_SOURCE_DIR "/docs/figures.md"));
    QVector<benchResults> runs(3,
                               benchResults(QString(), QStringLiteral("linux"), cpu, 2.25e9F, 2));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QString text = QString::fromUtf8(file.readAll());
    text = text.section(QStringLiteral("## Full runs in the terminal"), 1, 1)
               .section(QStringLiteral("\n## "), 0, 0);
    for (const testFacts &test : suiteFacts()) {
        const QString name = QString::fromUtf8(test.name);
        const QString start = QStringLiteral("\n| %1 | ").arg(name.trimmed());
        const QStringList values = text.section(start, 1, 1)
                                       .section(QStringLiteral(" |"), 0, 0)
                                       .split(QStringLiteral(", "));
        for (int run = 0; test.isInFullRuns() && run < runs.size(); ++run)
            runs[run].setTest(name, benchResults::test(values.value(run).toFloat()));
    }
    return runs;
}

} // namespace

class tst_plausibility : public QObject
{
    Q_OBJECT

private slots:
    void wholeRuns();
    void builtInMachines_data();
    void builtInMachines();
    void realRuns();
    void bounds_data();
    void bounds();
    void eachTestByClock_data();
    void eachTestByClock();
    void eachRatio_data();
    void eachRatio();
    void zerosArePassedOver();
    void boundsComeFromTheList();
};

void tst_plausibility::wholeRuns()
{
    QVERIFY(isWholeRun(wholeRun(cpu)));
    QVERIFY(!isWholeRun(benchResults()));
    for (const testFacts &test : suiteFacts()) {
        const QString name = QString::fromUtf8(test.name);
        benchResults zero = wholeRun(cpu);
        zero.setTest(name, benchResults::test(0));
        QCOMPARE(isWholeRun(zero), !test.isInFullRuns());
        benchResults missing = wholeRun(cpu);
        missing.getTests().remove(name);
        QCOMPARE(isWholeRun(missing), !test.isInFullRuns());
    }
}

void tst_plausibility::builtInMachines_data()
{
    QTest::addColumn<int>("index");
    const QVector<benchResults> all = ::builtInMachines();
    QCOMPARE(all.size(), 167);
    for (int i = 0; i < all.size(); ++i)
        QTest::addRow("%d %s", i, qPrintable(all.at(i).getName())) << i;
}

void tst_plausibility::builtInMachines()
{
    QFETCH(int, index);
    const benchResults machine = ::builtInMachines().at(index);
    QVERIFY(isWholeRun(machine));
    const outcome<void> checked = plausibility::ofBuiltInList().check(machine);
    QVERIFY2(checked, qPrintable(checked ? QString() : checked.error()));
}

/// Measured, on a virtual machine with loud neighbours: not one of the model's.
void tst_plausibility::realRuns()
{
    const QVector<benchResults> runs = documentedRuns();
    QCOMPARE(runs.size(), 3);
    for (const benchResults &run : runs) {
        QVERIFY(isWholeRun(run));
        const outcome<void> checked = plausibility::ofBuiltInList().check(run);
        QVERIFY2(checked, qPrintable(checked ? QString() : checked.error()));
    }
}

void tst_plausibility::bounds_data()
{
    QTest::addColumn<benchResults>("machine");
    QTest::addColumn<QString>("reason"); // empty for a plausible one
    const auto row = [](const char *title, const benchResults &machine, const char *reason = "") {
        QTest::newRow(title) << machine << QString::fromLatin1(reason);
    };
    row("a whole run", wholeRun(cpu));
    row("three times as fast", wholeRun(cpu, 3));
    row("thirty times as slow", wholeRun(cpu, 1.0F / 30));
    row("one thread", wholeRun(cpu, 1, QStringLiteral("linux"), 1));
    row("4096 threads", wholeRun(cpu, 1, QStringLiteral("linux"), 4096));
    // The best of the list has 769.75 "rotozoom 'dithered'" per GHz, the first one 100.867.
    row("just possible by clock", at(2.4e9F, 30.5F));
    row("too fast by clock", at(2.4e9F, 30.6F), "'rotozoom 'dithered'' is 3087 per GHz, more");
    row("half the clock", at(1.2e9F, 30.5F), " per GHz, more than");
    // The fastest clock of the list is 4.7 GHz.
    row("clock not known", at(0, 59));
    row("clock not known, too fast", at(0, 61), " per GHz, more than");
    row("made-up clock", at(2e10F, 59));
    row("made-up clock, too fast", at(2e10F, 61), " per GHz, more than");
    row("each core half as good again", changed(allMandel, 1.49F));
    row("all cores too fast", changed(allMandel, 1.51F),
        "'mandel (multicore)' is 6.04 times 'mandel', which 4 thread(s) cannot be");
    row("half of one core", both(0.51F));
    row("less than half of one core", both(0.49F), "'mandel (multicore)' is 0.49 times 'mandel'");
}

void tst_plausibility::bounds()
{
    QFETCH(benchResults, machine);
    QFETCH(QString, reason);
    const outcome<void> checked = plausibility::ofBuiltInList().check(machine);
    const QString found = checked ? QString() : checked.error();
    QVERIFY2(reason.isEmpty() ? checked.has_value() : found.contains(reason), qPrintable(found));
}

void tst_plausibility::eachTestByClock_data()
{
    QTest::addColumn<QString>("test");
    for (const testFacts &test : suiteFacts()) {
        if (test.isInFullRuns())
            QTest::newRow(test.name) << QString::fromUtf8(test.name);
    }
}

/// Four times the best by clock is the bound, and no other bound is in its way: the results of the
/// best machine of each test, all raised alike.
void tst_plausibility::eachTestByClock()
{
    QFETCH(QString, test);
    const auto perClock = [&test](const benchResults &machine) {
        const bool isMulticore = test.contains(QStringLiteral("multicore"));
        return machine.getTests().value(test).value / machine.getFrequency()
               / static_cast<float>(isMulticore ? machine.getThreads() : 1);
    };
    const QVector<benchResults> all = ::builtInMachines();
    const benchResults best = *std::max_element(
        all.begin(), all.end(), [&](const benchResults &one, const benchResults &other) {
            return perClock(one) < perClock(other);
        });
    const plausibility &rules = plausibility::ofBuiltInList();
    benchResults machine = best;
    machine.getTests() = {{test, benchResults::test(best.getTests().value(test).value * 3.99F)}};
    QVERIFY(rules.check(machine));
    machine = changed(test, 4.01F / 3.99F, machine);
    QVERIFY(!rules.check(machine));
    QVERIFY(rules.check(machine).error().startsWith(QStringLiteral("'%1' is ").arg(test)));
}

void tst_plausibility::eachRatio_data()
{
    eachTestByClock_data();
}

/// No test can leave its place among the others by itself.
void tst_plausibility::eachRatio()
{
    QFETCH(QString, test);
    const plausibility &rules = plausibility::ofBuiltInList();
    benchResults machine = wholeRun(cpu);
    for (const testFacts &one : suiteFacts()) { // without the other bounds
        const QString name = QString::fromUtf8(one.name);
        if (one.isMulticore() != test.contains(QStringLiteral("multicore")))
            machine.getTests().remove(name);
    }
    QVERIFY(rules.check(machine));
    for (const float factor : {1 / 200.0F, 200.0F}) {
        const benchResults one = changed(test, factor, machine);
        QVERIFY(!rules.check(one));
    }
    const benchResults slow = changed(test, 1 / 200.0F, machine);
    QVERIFY2(rules.check(slow).error().contains(QStringLiteral("which must be from")),
             qPrintable(rules.check(slow).error()));
}

void tst_plausibility::zerosArePassedOver()
{
    for (const QString &test : wholeRun(cpu).getTests().keys())
        QVERIFY(plausibility::ofBuiltInList().check(changed(test, 0)));
    QVERIFY(plausibility::ofBuiltInList().check(benchResults()));
}

void tst_plausibility::boundsComeFromTheList()
{
    const benchResults slow = wholeRun(cpu);
    const plausibility rules({slow});
    QVERIFY(rules.check(wholeRun(cpu, 3.9F)));
    QVERIFY(!rules.check(wholeRun(cpu, 4.1F)));
    // With two machines the ratios of both are possible, and what lies between.
    const QString lines = QStringLiteral("lines");
    benchResults other = slow;
    for (benchResults::test &test : other.getTests())
        test.value /= 10;
    other.findTest(lines)->value = slow.getTests().value(lines).value;
    const plausibility wider({slow, other});
    QVERIFY(rules.check(changed(lines, 1 / 5.9F)));
    QVERIFY(!rules.check(changed(lines, 1 / 6.1F)));
    QVERIFY(!rules.check(other));
    QVERIFY(wider.check(other));
    QVERIFY(wider.check(changed(lines, 1 / 5.9F)));
    QVERIFY(!wider.check(changed(lines, 1 / 6.1F)));
}

QTEST_APPLESS_MAIN(tst_plausibility)
#include "tst_plausibility.moc"
