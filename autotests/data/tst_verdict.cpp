// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/verdict.h"

#include "simulatedRounds.h"

#include <QtTest>

using roundList = std::vector<roundSpan>;
Q_DECLARE_METATYPE(roundList)

namespace
{

const QString multicore = QStringLiteral("mandel (multicore)");

QStringList wordsOf(const std::vector<remark> &remarks)
{
    QStringList words;
    for (const remark &found : remarks)
        words.append(wordOf(found.kind));
    return words;
}

QString sentencesOf(const std::vector<remark> &remarks)
{
    QStringList sentences;
    for (const remark &found : remarks)
        sentences.append(found.sentence);
    return sentences.join(QStringLiteral("; "));
}

/// 100 quiet rounds of some 80 ms in which @p disturb changes what it likes.
template <typename Change> roundList disturbed(Change disturb)
{
    simulatedRounds simulation(7);
    std::vector<double> spans = simulation.spans(100, 0.0803, 0.002);
    disturb(spans);
    return simulation.measured(spans);
}

template <typename Change> roundList disturbedClocks(Change disturb)
{
    roundList rounds = disturbed([](std::vector<double> &) {});
    disturb(rounds);
    return rounds;
}

} // namespace

class tst_verdict : public QObject
{
    Q_OBJECT

private slots:
    void levels_data();
    void levels();
    void disturbances_data();
    void disturbances();
    void fewRounds_data();
    void fewRounds();
    void suspendedRoundIsLeftOut_data();
    void suspendedRoundIsLeftOut();
    void falseAlarms_data();
    void falseAlarms();
    void lateMillisecondsAreCoarse();
    void slowerThanOneCore_data();
    void slowerThanOneCore();
    void otherProcesses_data();
    void otherProcesses();
    void busyAtStart_data();
    void busyAtStart();
    void failedTest();
    void words();
};

void tst_verdict::levels_data()
{
    QTest::addColumn<double>("spread");
    QTest::addColumn<QString>("word");
    QTest::newRow("no spread") << 0.0 << "good";
    QTest::newRow("good") << 0.0099 << "good";
    QTest::newRow("just noisy") << 0.0101 << "noisy";
    QTest::newRow("noisy") << 0.0249 << "noisy";
    QTest::newRow("unsteady") << 0.0251 << "unsteady";
}

void tst_verdict::levels()
{
    QFETCH(double, spread);
    QFETCH(QString, word);
    // Ten rounds up and down by the same: the sample's deviation is sqrt(10 / 9) of that.
    const double step = spread / std::sqrt(10.0 / 9);
    std::vector<double> spans;
    for (int i = 0; i < 10; ++i)
        spans.push_back(0.1 * (i % 2 == 0 ? 1 - step : 1 + step));
    const testRun test = testOf(QStringLiteral("lines"), simulatedRounds(1).measured(spans));
    const verdict found = verdictOf(test, {});
    QCOMPARE(wordOf(found.level), word);
    QVERIFY(std::abs(found.rounds.spread() - spread) < 1e-6);
    QCOMPARE(wordsOf(found.remarks), QStringList());
}

void tst_verdict::disturbances_data()
{
    QTest::addColumn<roundList>("rounds");
    QTest::addColumn<QString>("words");
    QTest::addColumn<QString>("sentence");
    using spanList = std::vector<double>;
    const auto row = [](const char *name, const roundList &rounds, const char *words,
                        const char *sentence) {
        QTest::newRow(name) << rounds << QString::fromLatin1(words)
                            << QString::fromLatin1(sentence);
    };
    row("nothing", disturbed([](spanList &) {}), "", "");
    row("slow first round", disturbed([](spanList &spans) { spans[0] *= 1.1; }),
        "slow-first-rounds", "the first round took ");
    row("three slow first rounds", disturbed([](spanList &spans) {
            for (std::size_t i = 0; i < 3; ++i)
                spans[i] *= 1.5;
        }),
        "slow-first-rounds", "the first 3 rounds took up to ");
    row("one slow round later", disturbed([](spanList &spans) { spans[40] *= 1.2; }), "outliers",
        "1 of 100 rounds lie far from the others, the furthest 19.");
    row("two quick rounds", disturbed([](spanList &spans) { spans[40] = spans[60] *= 0.9; }),
        "outliers", " below the median");
    row("below the floor", disturbed([](spanList &spans) {
            for (std::size_t i = 0; i < spans.size(); ++i)
                spans[i] = 0.08 * (i == 40 ? 1.0019 : 1);
        }),
        "", "");
    row("above the floor", disturbed([](spanList &spans) {
            for (std::size_t i = 0; i < spans.size(); ++i)
                spans[i] = 0.08 * (i == 40 ? 1.0021 : 1);
        }),
        "outliers", "1 of 100 rounds");
    row("slowly getting hot", disturbed([](spanList &spans) {
            for (std::size_t i = 0; i < spans.size(); ++i)
                spans[i] *= 1 + 0.0003 * double(i);
        }),
        "trend", "the second half of the rounds is 1.");
    row("hot at once", disturbed([](spanList &spans) {
            for (std::size_t i = 50; i < spans.size(); ++i)
                spans[i] *= 1.01;
        }),
        "trend", "slower than the first");
    row("getting quicker", disturbed([](spanList &spans) {
            for (std::size_t i = 0; i < spans.size(); ++i)
                spans[i] *= 1 - 0.0003 * double(i);
        }),
        "", "");
    row("a trend too small to matter", disturbed([](spanList &spans) {
            for (std::size_t i = 50; i < spans.size(); ++i)
                spans[i] *= 1.004;
        }),
        "", "");
    row("halted", disturbed([](spanList &spans) { spans[40] = 200; }), "suspended",
        "round 41 took 200 s: ");
    row("asleep twice", disturbed([](spanList &spans) { spans[40] = spans[50] = 3000; }),
        "suspended", "round 41 took 3000 s, and 1 more like it: ");
    row("asleep, with a clock that stood still",
        disturbedClocks([](roundList &rounds) { rounds[40].official += 300.0F; }),
        "clocks-disagree suspended", "round 41 took 300 s: ");
    row("clock set back by an hour",
        disturbedClocks([](roundList &rounds) { rounds[40].official -= 3600.0F; }),
        "clocks-disagree", "the rounds took -3592 s by the time of day");
    row("clock set back by an hour, and wrapped",
        disturbedClocks([](roundList &rounds) { rounds[40].official += 82800.0F; }),
        "clocks-disagree", "the rounds took 82808 s by the time of day");
    row("clock set back by a second",
        disturbedClocks([](roundList &rounds) { rounds[40].official -= 1.0F; }), "clocks-disagree",
        "by the clock that is never set");
    row("skewed by 0.9 %", simulatedRounds(3).measured(spanList(100, 0.0803), 1.009),
        "clocks-disagree", "");
    row("skewed by 2 %", simulatedRounds(3).measured(spanList(100, 0.0803), 1.02),
        "clocks-disagree", "");
    row("slewed by a time service", simulatedRounds(3).measured(spanList(100, 0.0803), 1.0005), "",
        "");
}

void tst_verdict::disturbances()
{
    QFETCH(roundList, rounds);
    QFETCH(QString, words);
    QFETCH(QString, sentence);
    const verdict found = verdictOf(testOf(QStringLiteral("lines"), rounds), {});
    QCOMPARE(wordsOf(found.remarks).join(QLatin1Char(' ')), words);
    const QString said = sentencesOf(found.remarks);
    QVERIFY2(said.contains(sentence), qPrintable(said));
}

void tst_verdict::fewRounds_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("word");
    QTest::newRow("none") << 0 << "too-few-rounds";
    QTest::newRow("one") << 1 << "too-few-rounds";
    QTest::newRow("two") << 2 << "too-few-rounds";
    QTest::newRow("four") << 4 << "too-few-rounds";
    QTest::newRow("five") << 5 << "unsteady";
}

void tst_verdict::fewRounds()
{
    QFETCH(int, count);
    QFETCH(QString, word);
    simulatedRounds simulation(11);
    std::vector<double> spans = simulation.spans(count, 2, 0.001);
    if (!spans.empty())
        spans.front() *= 1.5;
    const verdict found =
        verdictOf(testOf(QStringLiteral("lines"), simulation.measured(spans)), {});
    QCOMPARE(wordOf(found.level), word);
    QCOMPARE(wordsOf(found.remarks),
             count < 5 ? QStringList() : QStringList(QStringLiteral("slow-first-rounds")));
    QCOMPARE(found.rounds.count, count);
}

void tst_verdict::suspendedRoundIsLeftOut_data()
{
    QTest::addColumn<std::vector<double>>("spans");
    QTest::addColumn<int>("counted");
    QTest::newRow("minutes") << std::vector<double>{1, 1, 1, 300, 1, 1} << 5;
    QTest::newRow("one of two") << std::vector<double>{0.5, 300} << 1;
    QTest::newRow("the only one") << std::vector<double>{300} << 1;
    QTest::newRow("all are long") << std::vector<double>{70, 70, 71, 69, 70, 300} << 6;
    QTest::newRow("a minute") << std::vector<double>{0.1, 0.1, 60, 0.1, 0.1, 0.1} << 6;
    QTest::newRow("a hundred times") << std::vector<double>{3, 3, 3, 3, 3, 300} << 6;
    QTest::newRow("more") << std::vector<double>{3, 3, 3, 3, 3, 300.1} << 5;
}

void tst_verdict::suspendedRoundIsLeftOut()
{
    QFETCH(std::vector<double>, spans);
    QFETCH(int, counted);
    const auto all = static_cast<int>(spans.size());
    const verdict found =
        verdictOf(testOf(QStringLiteral("lines"), simulatedRounds(2).measured(spans)), {});
    QCOMPARE(found.rounds.count, counted);
    QCOMPARE(wordsOf(found.remarks).contains(QStringLiteral("suspended")), counted < all);
    if (counted < all)
        QVERIFY(found.rounds.maximum < 10);
}

void tst_verdict::falseAlarms_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<double>("mean");
    QTest::addColumn<int>("mostAlarms"); // of 1000 series
    QTest::newRow("8 rounds") << 8 << 1.0 << 20;
    QTest::newRow("50 rounds") << 50 << 0.1603 << 5;
    QTest::newRow("1000 rounds") << 1000 << 0.00807 << 5;
    QTest::newRow("1000 rounds in step with the clock") << 1000 << 0.008 << 5;
    QTest::newRow("1000 rounds shorter than its millisecond") << 1000 << 0.0003 << 5;
}

void tst_verdict::falseAlarms()
{
    QFETCH(int, count);
    QFETCH(double, mean);
    QFETCH(int, mostAlarms);
    constexpr double noise = 0.005;
    simulatedRounds simulation(20260101);
    QMap<QString, int> alarms;
    int disturbed = 0;
    for (int i = 0; i < 1000; ++i) {
        const roundList rounds = simulation.measured(simulation.spans(count, mean, noise));
        const verdict found = verdictOf(testOf(QStringLiteral("lines"), rounds), {});
        disturbed += found.remarks.empty() && found.level == steadiness::good ? 0 : 1;
        for (const QString &word : wordsOf(found.remarks))
            ++alarms[word];
    }
    QString text = QString::number(disturbed);
    for (auto alarm = alarms.cbegin(); alarm != alarms.cend(); ++alarm)
        text += QStringLiteral(", %1 %2").arg(alarm.key()).arg(alarm.value());
    qInfo("of 1000 quiet series not simply good: %s", qPrintable(text));
    QVERIFY2(disturbed <= mostAlarms, qPrintable(text));
}

// The official stopwatch is the coarser the longer the program runs; that is no disagreement.
void tst_verdict::lateMillisecondsAreCoarse()
{
    simulatedRounds simulation(5, 86000);
    for (int i = 0; i < 60; ++i) {
        const roundList rounds = simulation.measured(simulation.spans(100, 0.0123, 0.2));
        const verdict found = verdictOf(testOf(QStringLiteral("lines"), rounds), {});
        QVERIFY2(!wordsOf(found.remarks).contains(QStringLiteral("clocks-disagree")),
                 qPrintable(sentencesOf(found.remarks)));
    }
}

void tst_verdict::slowerThanOneCore_data()
{
    QTest::addColumn<QString>("single");
    QTest::addColumn<QString>("multi");
    QTest::addColumn<double>("factor");
    QTest::addColumn<int>("threads");
    QTest::addColumn<bool>("isNamed");
    const auto row = [](const char *name, const char *single, const char *multi, double factor,
                        int threads, bool isNamed) {
        QTest::newRow(name) << QString::fromLatin1(single) << QString::fromLatin1(multi) << factor
                            << threads << isNamed;
    };
    row("slower", "mandel", "mandel (multicore)", 0.9, 4, true);
    row("faster", "mandel", "mandel (multicore)", 3.5, 4, false);
    row("equal", "mandel", "mandel (multicore)", 0.99, 4, false);
    row("one thread", "mandel", "mandel (multicore)", 0.9, 1, false);
    row("threads unknown", "mandel", "mandel (multicore)", 0.9, 0, false);
    row("two spaces", "colors ", "colors  (multicore)", 0.9, 4, true);
    row("inside the quotes", "rotozoom 'linear'", "rotozoom 'linear (multicore)'", 0.9, 4, true);
    row("of another test", "rotozoom 'dithered'", "rotozoom 'linear (multicore)'", 0.9, 4, false);
}

void tst_verdict::slowerThanOneCore()
{
    QFETCH(QString, single);
    QFETCH(QString, multi);
    QFETCH(double, factor);
    QFETCH(int, threads);
    QFETCH(bool, isNamed);
    const roundList rounds = simulatedRounds(1).measured(std::vector<double>(10, 0.1));
    runRecord run;
    run.machine.threads = threads;
    run.tests = {testOf(single, rounds), testOf(multi, rounds, 8 * factor)};
    run.tests.back().isMulticore = true;
    const verdict found = verdictOf(run.tests.back(), run);
    QCOMPARE(wordsOf(found.remarks).contains(QStringLiteral("slower-than-one-core")), isNamed);
    QCOMPARE(wordsOf(verdictOf(run.tests.front(), run).remarks), QStringList());
    if (isNamed)
        QCOMPARE(sentencesOf(found.remarks),
                 QStringLiteral("on 4 threads it gives 0.90 times what one core gives"));
    run.settings.threads = 1;
    QCOMPARE(wordsOf(verdictOf(run.tests.back(), run).remarks), QStringList());
}

void tst_verdict::otherProcesses_data()
{
    QTest::addColumn<double>("taken");
    QTest::addColumn<double>("wall");
    QTest::addColumn<bool>("isNamed");
    QTest::newRow("none") << 0.0 << 8.0 << false;
    QTest::newRow("a tenth") << 0.8 << 8.0 << false;
    QTest::newRow("more") << 0.81 << 8.0 << true;
    QTest::newRow("three processors") << 24.0 << 8.0 << true;
    QTest::newRow("no time") << 1.0 << 0.0 << false;
}

void tst_verdict::otherProcesses()
{
    QFETCH(double, taken);
    QFETCH(double, wall);
    QFETCH(bool, isNamed);
    testRun test =
        testOf(QStringLiteral("lines"), simulatedRounds(1).measured(std::vector<double>(10, 0.1)));
    QCOMPARE(wordsOf(verdictOf(test, {}).remarks), QStringList());
    test.otherProcesses = taken;
    test.wallSeconds = wall;
    QCOMPARE(wordsOf(verdictOf(test, {}).remarks),
             isNamed ? QStringList(QStringLiteral("other-processes")) : QStringList());
}

void tst_verdict::busyAtStart_data()
{
    QTest::addColumn<double>("load");
    QTest::addColumn<bool>("isNamed");
    QTest::newRow("unknown") << -1.0 << false;
    QTest::newRow("idle") << 0.0 << false;
    QTest::newRow("half a processor") << 0.5 << false;
    QTest::newRow("busy") << 0.51 << true;
}

void tst_verdict::busyAtStart()
{
    QFETCH(double, load);
    QFETCH(bool, isNamed);
    runRecord run;
    if (load >= 0)
        run.context.atStart.loadAverage = load;
    const QStringList expected =
        isNamed ? QStringList(QStringLiteral("busy-at-start")) : QStringList();
    QCOMPARE(wordsOf(remarksOf(run)), expected);
    // An unknown share of one test leaves the average to say it; what is known of all says more.
    run.tests.resize(2);
    run.tests.front().otherProcesses = 0;
    QCOMPARE(wordsOf(remarksOf(run)), expected);
    run.tests.back().otherProcesses = 0;
    QCOMPARE(wordsOf(remarksOf(run)), QStringList());
}

void tst_verdict::failedTest()
{
    testRun test;
    test.end = testEnd::failed;
    const verdict found = verdictOf(test, {});
    QCOMPARE(wordOf(found.level), QStringLiteral("too-few-rounds"));
    QVERIFY(found.remarks.empty());
    QCOMPARE(found.rounds.count, 0);
}

void tst_verdict::words()
{
    QCOMPARE(wordOf(steadiness::tooFewRounds), QStringLiteral("too-few-rounds"));
    QCOMPARE(wordOf(remarkKind::busyAtStart), QStringLiteral("busy-at-start"));
    QCOMPARE(wordOf(remarkKind::slowerThanOneCore), QStringLiteral("slower-than-one-core"));
}

QTEST_APPLESS_MAIN(tst_verdict)
#include "tst_verdict.moc"
