// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runText.h"

#include "cli/comparisonText.h"
#include "data/textTable.h"

#include <QtTest>

using std::chrono::milliseconds;

namespace
{

testRun measured(const char *name, double value, int repetition = 0, int rounds = 10)
{
    testRun test;
    test.name = QString::fromLatin1(name);
    test.unit = QStringLiteral("MFakes");
    test.repetition = repetition;
    test.work = value;
    test.average = 1;
    test.wallSeconds = rounds;
    test.rounds.assign(static_cast<std::size_t>(rounds), {1, milliseconds(1000)});
    return test;
}

runRecord runOf(const std::vector<testRun> &tests)
{
    runRecord run;
    run.started = QDateTime(QDate(2026, 2, 3), QTime(4, 5), Qt::UTC);
    run.settings.testTime = 8000;
    run.machine.processor = QStringLiteral("Some Processor");
    run.machine.threads = 8;
    run.build.version = QStringLiteral("26.0");
    run.tests = tests;
    return run;
}

} // namespace

class tst_runText : public QObject
{
    Q_OBJECT

private slots:
    void table();
    void run();
    void endsOfTests();
    void repetitions();
    void history();
    void nothingMovesTheCursor();
    void comparison();
    void bars();
    void standings();
};

void tst_runText::table()
{
    QCOMPARE(textTable({{QStringLiteral("a"), QStringLiteral("1"), QStringLiteral("x")},
                        {QStringLiteral("bcd"), QStringLiteral("100"), QString()}},
                       {2}),
             QStringLiteral("a      1  x\nbcd  100\n"));
    QCOMPARE(textTable({}), QString());
}

void tst_runText::run()
{
    runRecord run = runOf({measured("one", 12.5), measured("a longer one", 3)});
    run.tests.at(1).frames = digestVerdict::right;
    QCOMPARE(runText(run),
             QStringLiteral("2026-02-03 04:05, Some Processor X8, Fennick 26.0\n"
                            "full run, 8 s per test\n\n"
                            "test          result            rounds  spread  verdict\n"
                            "one             12.5  MFakes/s      10   0.0 %  good\n"
                            "a longer one       3  MFakes/s      10   0.0 %  good, verified\n"));
    run.settings.threads = 3;
    run.settings.pinnedProcessor = 1;
    run.settings.wanted = runSettings::someTests;
    run.isStopped = true;
    QVERIFY(runText(run).contains(
        QStringLiteral("\ntests, stopped, 8 s per test, 3 threads, on processor 1\n")));
}

void tst_runText::endsOfTests()
{
    runRecord run = runOf({measured("one", 1), measured("two", 1), measured("three", 1, 0, 2)});
    run.tests.at(0).end = testEnd::failed;
    run.tests.at(1).end = testEnd::stopped;
    run.tests.at(1).frames = digestVerdict::wrong;
    run.tests.at(2).frames = digestVerdict::cannotTell;
    const QString text = runText(run);
    QVERIFY2(
        text.contains(QStringLiteral("\none         -                 -       -  no result\n")),
        qPrintable(text));
    QVERIFY(text.contains(QStringLiteral(" good, stopped, WRONG frames\n")));
    QVERIFY(
        text.contains(QStringLiteral(" 2       -  too few rounds to tell, cannot be verified\n")));
}

void tst_runText::repetitions()
{
    runRecord run = runOf({measured("one", 10, 0), measured("one", 14, 1), measured("one", 12, 2)});
    QCOMPARE(repetitionsText(run), QString());
    run.settings.repetitions = 3;
    QCOMPARE(repetitionsText(run),
             QStringLiteral("test  median            times  lowest  highest  spread\n"
                            "one       12  MFakes/s      3      10       14  16.7 %\n"));
    QVERIFY(runText(run).contains(repetitionsText(run)));
}

/// In relation to the first and to the one before, over the tests that both have.
void tst_runText::history()
{
    const runRecord first = runOf({measured("one", 10), measured("two", 10)});
    const runRecord second = runOf({measured("one", 20), measured("two", 5)});
    runRecord third = runOf({measured("one", 25), measured("three", 1)});
    third.isStopped = true;
    const runRecord fourth = runOf({measured("three", 2)});
    const QStringList lines = historyText({first, second, third, fourth}).split(QLatin1Char('\n'));
    QCOMPARE(lines.at(0),
             QStringLiteral("run  date              what               version  tests  "
                            "to first  to last"));
    QCOMPARE(lines.at(1),
             QStringLiteral("1    2026-02-03 04:05  full run              26.0      2   "
                            "100.0 %        -"));
    QVERIFY(lines.at(2).endsWith(QStringLiteral("  2   100.0 %  100.0 %")));
    QVERIFY(lines.at(3).contains(QStringLiteral("full run, stopped")));
    QVERIFY(lines.at(3).endsWith(QStringLiteral("  2   250.0 %  125.0 %")));
    QVERIFY(lines.at(4).endsWith(QStringLiteral("  1         -  200.0 %")));
}

/// Files of others may hold anything.
void tst_runText::nothingMovesTheCursor()
{
    runRecord run = runOf({measured("one\x1b[2J", 1)});
    run.machine.processor = QStringLiteral("\x1b]0;title\x07\nx");
    run.build.version = QStringLiteral("\r");
    run.tests.at(0).unit = QStringLiteral("\b");
    run.settings.repetitions = 2;
    runComparison compared;
    compared.tests.push_back({QStringLiteral("\x1b"), QStringLiteral("\x1b"), 1, 1, 1,
                              intervalSource::none, std::nullopt});
    compared.onlyFirst = QStringList(QStringLiteral("\x1b"));
    const comparedTitles titles = {QStringLiteral("\x1b"), QStringLiteral("\n\n")};
    for (const QString &text :
         {runText(run), historyText({run}), comparisonText(compared, titles, 200)}) {
        QVERIFY(!text.contains(QLatin1Char('\x1b')) && !text.contains(QLatin1Char('\r')));
        QVERIFY(!text.contains(QLatin1Char('\b')) && !text.contains(QLatin1Char('\x07')));
    }
    QVERIFY(comparisonText(compared, titles, 200).startsWith(QStringLiteral("A: ?\nB: ??\n\n")));
}

void tst_runText::comparison()
{
    runComparison compared;
    compared.tests = {
        {QStringLiteral("one"), QStringLiteral("MFakes"), 10, 20, 2, intervalSource::repeats,
         interval{1.9, 2.125}},
        {QStringLiteral("two"), QString(), 10, 10.1, 1.01, intervalSource::rounds,
         interval{0.99, 1.03}},
        {QStringLiteral("three"), QString(), 10, 5, 0.5, intervalSource::none, std::nullopt}};
    compared.geometricMean = 1.003;
    compared.onlySecond = QStringList(QStringLiteral("four"));
    const comparedTitles titles = {QStringLiteral("a"), QStringLiteral("b")};
    QCOMPARE(comparisonText(compared, titles, 20),
             QStringLiteral("A: a\nB: b\n\n"
                            "test   B / A        95 % interval\n"
                            "one    2.000       1.900 to 2.125\n"
                            "two    1.010  no clear difference\n"
                            "three  0.500\n\n"
                            "Geometric mean of B / A over 3 tests: 1.003\n"
                            "A has no result of: four\n"));
    QVERIFY(comparisonText(compared, titles, 100)
                .contains(QStringLiteral("one    10    20  MFakes/s  2.000")));
}

/// As long as there is room for, with a mark where nothing has changed.
void tst_runText::bars()
{
    runComparison compared;
    for (const double ratio : {2.0, 1.0, 0.5, 0.0})
        compared.tests.push_back(
            {QStringLiteral("t"), {}, 1, ratio, ratio, intervalSource::none, std::nullopt});
    const QStringList lines = comparisonText(compared, {}, 53).split(QLatin1Char('\n'));
    QCOMPARE(lines.at(3).size(), 26);
    QCOMPARE(lines.at(4).mid(28), QStringLiteral("###########|############"));
    QCOMPARE(lines.at(5).mid(28), QStringLiteral("###########|"));
    QCOMPARE(lines.at(6).mid(28), QStringLiteral("######     |"));
    QCOMPARE(lines.at(7).mid(28), QStringLiteral("#          |"));
    QVERIFY(comparisonText(compared, {}, 36).indexOf(QLatin1Char('#')) < 0);
}

void tst_runText::standings()
{
    const standing first = {181.26, 12, 167};
    const standing second = {100, 41, 167};
    const QString list = QStringLiteral("Combined score among the 167 machines of the list: ");
    QCOMPARE(standingsText(first, second),
             list + QStringLiteral("A has 181.3, place 12; B has 100.0, place 41\n"));
    QCOMPARE(standingsText(std::nullopt, second), list + QStringLiteral("B has 100.0, place 41\n"));
    // Without the one that is 100 there is no score at all.
    QCOMPARE(standingsText(first, std::nullopt), QString());
}

QTEST_APPLESS_MAIN(tst_runText)
#include "tst_runText.moc"
