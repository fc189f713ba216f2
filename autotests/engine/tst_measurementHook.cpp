// SPDX-License-Identifier: GPL-3.0-or-later
#include "runnerFixture.h"

#include "support/dataDirectory.h"

namespace
{

/// Writes what it is told between the events of the tests.
class notes : public measurementHook
{
public:
    explicit notes(QStringList &eventLog) : log(eventLog) {}

    void testStarts(const testBase &test, const QSize &resolution) override
    {
        log.append(QStringLiteral("starts %1 %2").arg(test.getName()).arg(resolution.width()));
    }
    void roundMeasured(const roundSpan &span) override
    {
        log.append(QStringLiteral("round %1").arg(span.fine.count() / 1'000'000));
    }
    void testEnded(const testBase &test, testEnd end, float average) override
    {
        static const char *const ends[] = {"complete", "stopped", "failed"};
        log.append(QStringLiteral("ended %1 %2 %3")
                       .arg(test.getName(), QLatin1String(ends[static_cast<int>(end)]),
                            end == testEnd::failed
                                ? QString()
                                : QString::number(static_cast<double>(average))));
    }

private:
    QStringList &log;
};

} // namespace

class tst_measurementHook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { prepareRunners(); }
    void order();
    void ends_data();
    void ends();
    void fullRun();

private:
    dataDirectory directory;
};

/// The set-up follows the start, and the test is still set up at its end; no round holds a call.
void tst_measurementHook::order()
{
    bench fixture({a});
    notes hook(fixture.events);
    fixture.runner->setMeasurementHook(&hook);
    QVERIFY(fixture.runner->runSingleTest(a, {}));
    QCOMPARE(fixture.events.join(QLatin1Char('|')),
             QStringLiteral("starts a 3820|a.setup|a.release|a.updateStart|a.preRun|a.run|"
                            "a.postRun|round 70|a.updateProgress|ended a complete 0.07|"
                            "a.updateEnd|a.release"));
}

void tst_measurementHook::ends_data()
{
    QTest::addColumn<bool>("canSetup");
    QTest::addColumn<bool>("canWork");
    QTest::addColumn<int>("stopAtPoll");
    QTest::addColumn<QString>("told");
    QTest::newRow("no set-up") << false << true << 99
                               << QStringLiteral("starts a 800|ended a failed ");
    QTest::newRow("no work") << true << false << 99
                             << QStringLiteral("starts a 800|ended a failed ");
    QTest::newRow("stopped") << true << true << 1
                             << QStringLiteral("starts a 800|round 70|ended a stopped 0.07");
}

void tst_measurementHook::ends()
{
    QFETCH(bool, canSetup);
    QFETCH(bool, canWork);
    QFETCH(int, stopAtPoll);
    QFETCH(QString, told);
    bench fixture({a});
    fixture.fakes.first()->canSetup = canSetup;
    fixture.fakes.first()->canWork = canWork;
    fixture.stopAtPoll = stopAtPoll;
    QStringList events;
    notes hook(events);
    fixture.runner->setMeasurementHook(&hook);
    fixture.runner->runSingleTest(a, QStringLiteral("800x600"));
    QCOMPARE(events.join(QLatin1Char('|')), told);
}

void tst_measurementHook::fullRun()
{
    bench fixture({a, b});
    QStringList events;
    notes hook(events);
    fixture.runner->setMeasurementHook(&hook);
    QVERIFY(!fixture.runner->runBenchmark());
    fixture.runner->setMeasurementHook(nullptr);
    QVERIFY(!fixture.runner->runBenchmark());
    QCOMPARE(events.size(), 6);
    QCOMPARE(events.at(3), QStringLiteral("starts b 3820"));
}

QTEST_GUILESS_MAIN(tst_measurementHook)
#include "tst_measurementHook.moc"
