// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"

#include "runnerFixture.h"

#include <QtTest>

class tst_benchBaseResults : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { prepareRunners(); }
    void recordsOnlyTheStandardResolution();
    void recordsOnlyBothSidesOfTheStandardResolution();
    void recordsOnlyExistingEntries();
    void laterResultReplaces();
    void repeatsUntilTheTimeIsUp_data();
    void repeatsUntilTheTimeIsUp();
    void progressSpans();
    void resultIsWorkByTheMeanSpan();
    void noTestTime();
};

void tst_benchBaseResults::recordsOnlyTheStandardResolution()
{
    bench fixture({a});
    QVERIFY(fixture.runner->runSingleTest(a, QStringLiteral("800x600")));
    QCOMPARE(fixture.stored(a), 0.0F);
    QVERIFY(!fixture.runner->getResults().last().isMeasured());
    QVERIFY(fixture.runner->runSingleTest(a, QStringLiteral("3820x2160")));
    QVERIFY(fixture.stored(a) > 0);
    QVERIFY(fixture.runner->getResults().last().isMeasured());
    for (const benchResults &machine : fixture.runner->getResults().mid(0, 1))
        QVERIFY(!machine.isMeasured());
}

void tst_benchBaseResults::recordsOnlyBothSidesOfTheStandardResolution()
{
    bench fixture({a});
    testBase *test = fixture.fakes.at(0);
    for (const QSize &resolution : {QSize(3820, 100), QSize(100, 2160), QSize(3840, 2160)}) {
        QVERIFY(fixture.runner->runTest(test, resolution, false));
        QCOMPARE(fixture.stored(a), 0.0F);
        QVERIFY(!fixture.runner->getResults().last().isMeasured());
    }
    QVERIFY(fixture.runner->runTest(test, QSize(3820, 2160), false));
    QVERIFY(fixture.stored(a) > 0);
}

void tst_benchBaseResults::recordsOnlyExistingEntries()
{
    // A record that does not know the test: it was built for another suite.
    class unknowing : public benchBase
    {
    public:
        using benchBase::benchBase;
        void forget() { results.last().getTests().clear(); }
    };
    textLog log;
    suite tests;
    tests.push_back(std::make_unique<fakeTest>(a, nullptr));
    unknowing runner(&log, nullptr, nullptr, std::move(tests));
    runner.loadUserData();
    runner.forget();
    runner.setTestTime(1);
    QVERIFY(runner.runSingleTest(a, QString()));
    QVERIFY(runner.getResults().last().getTests().isEmpty());
    QVERIFY(runner.getResults().last().isMeasured());
}

void tst_benchBaseResults::laterResultReplaces()
{
    bench fixture({a});
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    const float slow = fixture.stored(a);
    fixture.fakes.at(0)->work = 30000;
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    QVERIFY(fixture.stored(a) > slow);
}

void tst_benchBaseResults::repeatsUntilTheTimeIsUp_data()
{
    QTest::addColumn<int>("testTime");
    QTest::addColumn<int>("runs");
    QTest::addRow("just over") << 351 << 6;
    QTest::addRow("to the millisecond") << 350 << 5;
    QTest::addRow("just under") << 349 << 5;
    QTest::addRow("shorter than a run") << 1 << 1;
}

void tst_benchBaseResults::repeatsUntilTheTimeIsUp()
{
    QFETCH(int, testTime);
    QFETCH(int, runs);
    bench fixture({a});
    fixture.runner->setTestTime(testTime);
    // How long a test runs does not depend on the clock that people set.
    fixture.fakes.at(0)->onRun = [] {
        fakeClock::pass(milliseconds(70));
        fakeClock::set(QTime(12, 0));
    };
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    QCOMPARE(fixture.events.filter(QStringLiteral(".run")).size(), runs);
    QCOMPARE(fixture.spans.size(), runs);
}

/// The spans lie between the starts of successive runs; the first has nothing before it.
void tst_benchBaseResults::progressSpans()
{
    bench fixture({a});
    fixture.runner->setTestTime(1000);
    fixture.progressTime = milliseconds(7);
    fixture.fakes.at(0)->onRun = [run = 0]() mutable {
        const int durations[] = {100, 250, 30, 400, 500};
        fakeClock::pass(milliseconds(durations[run++]));
    };
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    QCOMPARE(fixture.spans, QVector<int>({0, 107, 257, 37, 407}));
    // The next test counts anew.
    fixture.spans.clear();
    fixture.fakes.at(0)->onRun = [] { fakeClock::pass(milliseconds(600)); };
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    QCOMPARE(fixture.spans, QVector<int>({0, 607}));
}

void tst_benchBaseResults::resultIsWorkByTheMeanSpan()
{
    bench fixture({a});
    fixture.runner->setTestTime(600);
    // What the hook takes is not measured, but counts against the test time.
    fixture.progressTime = milliseconds(50);
    fixture.fakes.at(0)->onRun = [run = 1]() mutable {
        fakeClock::pass(milliseconds(100 * run++));
    };
    QVERIFY(fixture.runner->runSingleTest(a, QString()));
    QVERIFY(fixture.text.endsWith(testLine(a) + QStringLiteral("15/s MFakes (avg 200ms)\n")));
    QCOMPARE(fixture.stored(a), 15.0F);
}

void tst_benchBaseResults::noTestTime()
{
    bench fixture({a});
    fixture.runner->setTestTime(0);
    QVERIFY(fixture.runner->runSingleTest(a, QStringLiteral("320x240")));
    QVERIFY(!fixture.events.contains(QStringLiteral("a.run")));
    QVERIFY(fixture.text.endsWith(testLine(a) + QStringLiteral("inf/s MFakes (avg 0ms)\n")));
}

QTEST_GUILESS_MAIN(tst_benchBaseResults)
#include "tst_benchBaseResults.moc"
