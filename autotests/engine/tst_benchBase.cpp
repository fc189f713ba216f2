// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchBase.h"

#include "engine/machineProbe.h"
#include "runnerFixture.h"

#include <QtTest>

#include <new>

class tst_benchBase : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { prepareRunners(); }
    void startText();
    void lists();
    void fullRun();
    void singleOnlyIsSkippedButCounted();
    void failedSetup();
    void failedRound_data();
    void failedRound();
    void noMemoryInTheToolkit();
    void stopInTheFifthTest();
    void stopBetweenTests();
    void hooksMayBeMissing();
    void singleTest();
    void unknownTest();
    void unknownResolution();
    void firstOfEqualNames();
    void namesWithPlaceholders();
    void nullEntryIsSkipped();
    void testTimes();
    void realSuite();
};

void tst_benchBase::startText()
{
    textLog log;
    const benchBase runner(&log, nullptr, nullptr, suite());
    const machineProbe &probe = machineProbe::instance();
    const int threads = probe.getThreadCount();
    QString expected = QStringLiteral("Found %1 threads [%2]\nCPU/HW: %3\n")
                           .arg(QString::number(threads), QString(threads, QLatin1Char('A')),
                                probe.getProcessorName());
    if (!probe.getFrequencies().isEmpty()) {
        const double gigahertz = static_cast<double>(probe.getFrequencies().last() * 1e-9F);
        expected += QStringLiteral("CPU Frequency seems to be %1 GHz\n").arg(gigahertz);
    }
    QCOMPARE(log.text, expected);
}

void tst_benchBase::lists()
{
    const bench fixture({a, b});
    QCOMPARE(fixture.runner->getTestNames(), QStringList({a, b}));
    QCOMPARE(fixture.runner->getTests().size(), 2);
    QCOMPARE(fixture.runner->getTests().at(1), static_cast<testBase *>(fixture.fakes.at(1)));
    QCOMPARE(fixture.runner->getResolutionNames(),
             QStringList({QStringLiteral("3820x2160"), QStringLiteral("1920x1080"),
                          QStringLiteral("1600x900"), QStringLiteral("1280x960"),
                          QStringLiteral("800x600"), QStringLiteral("640x480"),
                          QStringLiteral("320x240")}));
    QCOMPARE(fixture.runner->getTitle(), title);
}

void tst_benchBase::fullRun()
{
    bench fixture({a, b});
    QVERIFY(!fixture.runner->runBenchmark());
    QCOMPARE(fixture.events, eventsOf(a) + eventsOf(b));
    QCOMPARE(withoutFigures(fixture.text),
             title
                 + QStringLiteral(
                     "\nStart Benchmark (0s per Test (2) use virtual resolution 3820x2160):\n")
                 + testLine(a) + figures + testLine(b) + figures
                 + QStringLiteral("Benchmark finished\n"));
    // Once in each test, once after it.
    QCOMPARE(fixture.polls, 4);
}

void tst_benchBase::singleOnlyIsSkippedButCounted()
{
    bench fixture({a, b});
    fixture.fakes.at(0)->setSingleOnly(true);
    QVERIFY(!fixture.runner->runBenchmark());
    QCOMPARE(fixture.events, eventsOf(b));
    QVERIFY(fixture.text.contains(QStringLiteral("per Test (2) use")));
    fixture.events.clear();
    QVERIFY(fixture.runner->runSingleTest(a, QStringLiteral("320x240")));
    QCOMPARE(fixture.events, eventsOf(a));
}

void tst_benchBase::failedSetup()
{
    bench fixture({a, b, c});
    fixture.fakes.at(1)->canSetup = false;
    QVERIFY(!fixture.runner->runBenchmark());
    QCOMPARE(fixture.events, eventsOf(a) + QStringList(QStringLiteral("b.setup")) + eventsOf(c));
    QVERIFY(withoutFigures(fixture.text)
                .endsWith(testLine(a) + figures + QStringLiteral("Error: cant setup test b")
                          + testLine(c) + figures + QStringLiteral("Benchmark finished\n")));
    QVERIFY(!fixture.runner->runSingleTest(b, QString()));
}

void tst_benchBase::failedRound_data()
{
    QTest::addColumn<int>("goodRounds");
    QTest::newRow("the first one") << 0;
    QTest::newRow("the third one") << 2;
}

/// The test ends there and leaves what was stored before; the next test runs as always.
void tst_benchBase::failedRound()
{
    QFETCH(int, goodRounds);
    bench hooks({a, b, c});
    hooks.runner->runSingleTest(b, {});
    const float before = hooks.stored(b);
    QVERIFY(before > 0.0F);
    hooks.text.clear();
    hooks.events.clear();
    int rounds = 0;
    hooks.fakes[1]->work = 4;
    hooks.fakes[1]->onRun = [&] { hooks.fakes[1]->canWork = rounds++ < goodRounds; };
    QVERIFY(!hooks.runner->runBenchmark());
    QCOMPARE(rounds, goodRounds + 1);
    QCOMPARE(hooks.runner->getFailedTests(), 1);
    QCOMPARE(hooks.stored(b), before);
    QVERIFY(hooks.stored(c) > 0.0F);
    QVERIFY(withoutFigures(hooks.text)
                .endsWith(testLine(a) + figures + QStringLiteral("Test ") + b.rightJustified(36)
                          + QStringLiteral(" Error: no memory for a round of this test, so it has "
                                           "no result\n")
                          + testLine(c) + figures + QStringLiteral("Benchmark finished\n")));
    // It is ended and released like any other.
    QCOMPARE(hooks.events.count(QStringLiteral("b.updateProgress")), goodRounds);
    QCOMPARE(hooks.events.count(QStringLiteral("b.updateEnd")), 1);
    QCOMPARE(hooks.events.filter(QStringLiteral("b.")).last(), QStringLiteral("b.release"));

    hooks.text.clear();
    QVERIFY(!hooks.runner->runSingleTest(b, {}));
    QVERIFY(hooks.text.contains(QStringLiteral("Error: no memory")));
    QVERIFY(!hooks.text.contains(QStringLiteral("Result")));
    // A new set-up is a new start.
    hooks.fakes[1]->canWork = true;
    hooks.fakes[1]->onRun = [] { fakeClock::pass(milliseconds(70)); };
    QVERIFY(hooks.runner->runSingleTest(b, {}));
    QVERIFY(!hooks.runner->runBenchmark());
    QCOMPARE(hooks.runner->getFailedTests(), 0);
}

/// Where a test's own buffers report a failure, the toolkit's containers throw.
void tst_benchBase::noMemoryInTheToolkit()
{
    bench hooks({a});
    hooks.fakes[0]->onRun = [] { throw std::bad_alloc(); };
    QVERIFY(!hooks.runner->runSingleTest(a, {}));
    QVERIFY(hooks.text.endsWith(QStringLiteral("so it has no result\n")));
    QVERIFY(!hooks.fakes[0]->getBuffer());
    hooks.fakes[0]->onSetup = [] { throw std::bad_alloc(); };
    QVERIFY(!hooks.runner->runSingleTest(a, {}));
    QVERIFY(hooks.text.endsWith(QStringLiteral("Error: cant setup test a")));
    QVERIFY(!hooks.fakes[0]->getBuffer());
}

void tst_benchBase::stopInTheFifthTest()
{
    const QStringList names = {
        a, b, c, QStringLiteral("d"), QStringLiteral("e"), QStringLiteral("f")};
    bench fixture(names);
    fixture.stopAtPoll = 9; // two polls per finished test
    QVERIFY(fixture.runner->runBenchmark());
    QStringList expected;
    for (const QString &name : names.mid(0, 5))
        expected += eventsOf(name);
    QCOMPARE(fixture.events, expected);
    QVERIFY(withoutFigures(fixture.text)
                .endsWith(QStringLiteral("Test ") + QStringLiteral("e").rightJustified(36)
                          + QStringLiteral("\nstopped by user ...\n Result: ") + figures
                          + QStringLiteral("stopped by user ...\n")));
    QVERIFY(!fixture.text.contains(QStringLiteral("Benchmark finished")));
    QVERIFY(fixture.stored(QStringLiteral("e")) > 0);
    QCOMPARE(fixture.stored(QStringLiteral("f")), 0.0F);
}

void tst_benchBase::stopBetweenTests()
{
    bench fixture({a, b});
    fixture.stopAtPoll = 2;
    QVERIFY(fixture.runner->runBenchmark());
    QCOMPARE(fixture.events, eventsOf(a));
    QVERIFY(withoutFigures(fixture.text)
                .endsWith(testLine(a) + figures + QStringLiteral("stopped by user ...\n")));
}

void tst_benchBase::hooksMayBeMissing()
{
    textLog log;
    suite tests;
    tests.push_back(std::make_unique<fakeTest>(a, nullptr));
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    runner.setTestTime(20);
    // Without a record of this machine there is nothing to write a result into.
    QVERIFY(!runner.runBenchmark());
    QVERIFY(log.text.endsWith(QStringLiteral("Benchmark finished\n")));
}

void tst_benchBase::singleTest()
{
    bench fixture({a, b});
    fixture.runner->setTestTime(10999);
    fixture.stopAtPoll = 1;
    QVERIFY(fixture.runner->runSingleTest(b, QStringLiteral("800x600")));
    QCOMPARE(fixture.events, eventsOf(b));
    QCOMPARE(fixture.fakes.at(1)->getWidth(), 800);
    QCOMPARE(fixture.fakes.at(1)->getHeight(), 600);
    QCOMPARE(withoutFigures(fixture.text),
             QStringLiteral("Start single test (10s testtime use virtual resolution 800x600):\n"
                            "Test ")
                 + b.rightJustified(36) + QStringLiteral("\nstopped by user ...\n Result: ")
                 + figures);
}

void tst_benchBase::unknownTest()
{
    bench fixture({a});
    QVERIFY(!fixture.runner->runSingleTest(QStringLiteral("a "), QStringLiteral("800x600")));
    QVERIFY(fixture.text.isEmpty());
    QVERIFY(fixture.events.isEmpty());
}

void tst_benchBase::unknownResolution()
{
    bench fixture({a});
    QVERIFY(fixture.runner->runSingleTest(a, QStringLiteral("1x1")));
    QCOMPARE(fixture.fakes.at(0)->getWidth(), 3820);
    QVERIFY(fixture.stored(a) > 0);
}

void tst_benchBase::firstOfEqualNames()
{
    bench fixture({a, a});
    fixture.runner->runSingleTest(a, QStringLiteral("320x240"));
    QCOMPARE(fixture.fakes.at(0)->getWidth(), 320);
    QCOMPARE(fixture.fakes.at(1)->getWidth(), 0);
}

void tst_benchBase::namesWithPlaceholders()
{
    const QString name = QStringLiteral("%1 %2");
    bench fixture({name});
    QVERIFY(fixture.runner->runSingleTest(name, QStringLiteral("320x240")));
    QVERIFY(withoutFigures(fixture.text).endsWith(testLine(name) + figures));
}

void tst_benchBase::nullEntryIsSkipped()
{
    textLog log;
    QStringList events;
    suite tests;
    tests.push_back(nullptr);
    tests.push_back(std::make_unique<fakeTest>(a, &events));
    benchBase runner(&log, nullptr, nullptr, std::move(tests));
    runner.loadUserData();
    runner.setTestTime(1);
    QVERIFY(!runner.runBenchmark());
    QVERIFY(log.text.contains(QStringLiteral("per Test (2) use")));
    QVERIFY(events.contains(QStringLiteral("a.run")));
    QVERIFY(runner.runSingleTest(a, QStringLiteral("320x240")));
}

void tst_benchBase::testTimes()
{
    textLog log;
    benchBase runner(&log, nullptr, nullptr, suite());
    QCOMPARE(runner.getTestTimeSeconds(), 8.0F);
    runner.setTestTime(1500);
    QCOMPARE(runner.getTestTimeSeconds(), 1.5F);
}

void tst_benchBase::realSuite()
{
    textLog log;
    benchBase runner(&log, nullptr, nullptr);
    QVERIFY(runner.getTestNames().contains(QStringLiteral("mandel")));
    QVERIFY(runner.getTestNames().contains(QStringLiteral("mandel (multicore)")));
    runner.loadReferenceData(benchBase::builtInReference);
    runner.loadUserData();
    QCOMPARE(runner.getResults().last().getTests().size(), runner.getTestNames().size());
    runner.setTestTime(1);
    QVERIFY(runner.runSingleTest(QStringLiteral("mandel"), QStringLiteral("320x240")));
    QVERIFY(log.text.contains(QStringLiteral(" MPixel (avg ")));
    QVERIFY(!runner.getTests().first()->getBuffer());
}

QTEST_GUILESS_MAIN(tst_benchBase)
#include "tst_benchBase.moc"
