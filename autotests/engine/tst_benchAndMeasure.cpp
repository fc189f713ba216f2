// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchAndMeasure.h"

#include "engine/stopwatch.h"
#include "support/fakeClock.h"
#include "support/fakeTest.h"

#include <QtTest>

using std::chrono::milliseconds;

namespace
{

const QTime processStart(12, 0);

/// The span between two readings of the process stopwatch, in milliseconds: both are rounded to
/// single precision before the difference is taken.
double spanBetween(int from, int to)
{
    const float start = float(from) * 0.001F;
    const float end = float(to) * 0.001F;
    return double(end) - double(start);
}

} // namespace

class tst_benchAndMeasure : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void oneRun();
    void statistics();
    void resetKeepsTheAverage();
    void onlyRunIsTimed();
    void callOrder();
    void withoutTest();
    void singlePrecision_data();
    void singlePrecision();
    void totalOfUnroundedSpans();
    void clockThatIsSet_data();
    void clockThatIsSet();
    void clockIsReadTwice();
    void bothClocks();
    void fineClockIsReadOutside();
    void stopwatchWraps_data();
    void stopwatchWraps();
    void steadyStopwatchTruncates();
    void systemClocksGoOn();

private:
    fakeClock clock{processStart};
    fakeTest test{QStringLiteral("t"), nullptr};
    benchAndMeasure measurement;
};

/// The process stopwatch starts with the first question and never again.
void tst_benchAndMeasure::initTestCase()
{
    benchAndMeasure().measure(nullptr);
}

void tst_benchAndMeasure::init()
{
    fakeClock::set(processStart);
    test.onRun = nullptr;
    measurement.reset();
}

void tst_benchAndMeasure::oneRun()
{
    test.onRun = [] { fakeClock::pass(milliseconds(5)); };
    QCOMPARE(measurement.measure(&test), 0.005F);
    QCOMPARE(measurement.getCount(), 1U);
    QCOMPARE(measurement.getTotal(), 0.005F);
    QCOMPARE(measurement.getMinimum(), 0.005F);
    QCOMPARE(measurement.getMaximum(), 0.005F);
    QCOMPARE(measurement.getAverage(), 0.005F);
}

void tst_benchAndMeasure::statistics()
{
    int elapsed = 0;
    float total = 0;
    for (const int ms : {300, 900, 100, 0, 200}) {
        test.onRun = [ms] { fakeClock::pass(milliseconds(ms)); };
        const double span = spanBetween(elapsed, elapsed + ms);
        QVERIFY(measurement.measure(&test) == float(span));
        elapsed += ms;
        total = float(double(total) + span);
    }
    QCOMPARE(measurement.getCount(), 5U);
    QVERIFY(measurement.getTotal() == total);
    QVERIFY(measurement.getMinimum() == 0.0F);
    QVERIFY(measurement.getMaximum() == float(spanBetween(300, 1200)));
    QVERIFY(measurement.getAverage() == total / 5.0F);
}

void tst_benchAndMeasure::resetKeepsTheAverage()
{
    test.onRun = [] { fakeClock::pass(milliseconds(4)); };
    measurement.measure(&test);
    QCOMPARE(measurement.getAverage(), 0.004F);
    measurement.reset();
    QCOMPARE(measurement.getCount(), 0U);
    QCOMPARE(measurement.getTotal(), 0.0F);
    QCOMPARE(measurement.getMinimum(), 1'000'000.0F);
    QCOMPARE(measurement.getMaximum(), 0.0F);
    QCOMPARE(measurement.getAverage(), 0.004F);
}

void tst_benchAndMeasure::onlyRunIsTimed()
{
    class slowAround : public fakeTest
    {
    public:
        using fakeTest::fakeTest;
        void preRun() override { fakeClock::pass(milliseconds(400)); }
        void postRun() override { fakeClock::pass(milliseconds(800)); }
    };
    slowAround slow(QStringLiteral("t"), nullptr);
    slow.onRun = [] { fakeClock::pass(milliseconds(3)); };
    QVERIFY(measurement.measure(&slow) == float(spanBetween(400, 403)));
    QVERIFY(measurement.getTotal() == float(spanBetween(400, 403)));
}

void tst_benchAndMeasure::callOrder()
{
    QStringList log;
    fakeTest noted(QStringLiteral("t"), &log);
    measurement.measure(&noted);
    QCOMPARE(log, QStringList({QStringLiteral("t.preRun"), QStringLiteral("t.run"),
                               QStringLiteral("t.postRun")}));
}

void tst_benchAndMeasure::withoutTest()
{
    QCOMPARE(measurement.measure(nullptr), 0.0F);
    QCOMPARE(measurement.getCount(), 1U);
}

void tst_benchAndMeasure::singlePrecision_data()
{
    QTest::addColumn<int>("start");
    QTest::addColumn<int>("ms");
    QTest::addColumn<double>("span");
    QTest::addRow("short after the start") << 0 << 1 << 0.0010000000474974513;
    // After some hours a float of seconds has steps of 1/1024 and 1/512, and one of milliseconds
    // has steps of two.
    QTest::addRow("one that is nearly two") << 16'384'000 << 1 << 0.001953125;
    QTest::addRow("one that is none") << 20'000'000 << 1 << 0.0;
    QTest::addRow("one that is nearly four") << 20'000'001 << 1 << 0.00390625;
    QTest::addRow("eight hours") << 28'800'000 << 137 << 0.134765625;
    QTest::addRow("just before the day is over") << 86'399'000 << 999 << 1.0;
}

/// All stored results were made with these spans, so they stay as coarse as they are.
void tst_benchAndMeasure::singlePrecision()
{
    QFETCH(int, start);
    QFETCH(int, ms);
    QFETCH(double, span);
    QVERIFY(span == spanBetween(start, start + ms));
    fakeClock::pass(milliseconds(start));
    test.onRun = [ms] { fakeClock::pass(milliseconds(ms)); };
    QVERIFY(measurement.measure(&test) == float(span));
    QVERIFY(measurement.getMinimum() == float(span));
    QVERIFY(measurement.getMaximum() == float(span));
    QVERIFY(measurement.getTotal() == float(span));
}

/// The span between two single-precision readings has more digits than one of them. It is added to
/// the total with all of them, and only the sum is rounded.
void tst_benchAndMeasure::totalOfUnroundedSpans()
{
    test.onRun = [] { fakeClock::pass(milliseconds(1)); };
    measurement.measure(&test);
    fakeClock::pass(milliseconds(1));
    test.onRun = [] { fakeClock::pass(milliseconds(100)); };
    const double span = spanBetween(2, 102);
    QVERIFY(double(float(span)) != span);
    QVERIFY(float(0.001F + float(span)) != float(double(0.001F) + span));
    QVERIFY(measurement.measure(&test) == float(span));
    QVERIFY(measurement.getTotal() == float(double(0.001F) + span));
}

void tst_benchAndMeasure::clockThatIsSet_data()
{
    QTest::addColumn<QTime>("before");
    QTest::addColumn<QTime>("after");
    QTest::addColumn<double>("span");
    QTest::addRow("midnight") << QTime(23, 59, 59, 900) << QTime(0, 0, 0, 350)
                              << spanBetween(43'199'900, 43'200'350);
    QTest::addRow("set back") << QTime(14, 0) << QTime(13, 59, 58)
                              << spanBetween(7'200'000, 7'198'000);
    QTest::addRow("set forward") << QTime(14, 0) << QTime(15, 0)
                                 << spanBetween(7'200'000, 10'800'000);
    QTest::addRow("set back before the start")
        << QTime(12, 0, 1) << QTime(11, 59, 59) << spanBetween(1000, 86'399'000);
    QTest::addRow("a day after the start")
        << QTime(11, 59, 59, 999) << QTime(12, 0, 0, 2) << spanBetween(86'399'999, 2);
}

void tst_benchAndMeasure::clockThatIsSet()
{
    QFETCH(QTime, before);
    QFETCH(QTime, after);
    QFETCH(double, span);
    fakeClock::set(before);
    test.onRun = [after] { fakeClock::set(after); };
    QVERIFY(measurement.measure(&test) == float(span));
    QVERIFY(measurement.getTotal() == float(span));
    QVERIFY(measurement.getMinimum() == float(span));
    QVERIFY(measurement.getMaximum() == float(qMax(span, 0.0)));
}

/// Once before the run and once after it: nothing else stands in the timed span.
void tst_benchAndMeasure::clockIsReadTwice()
{
    static int readings = 0;
    static int readingsBeforeTheRun = 0;
    readings = 0;
    currentClocks.timeOfDay = [] {
        ++readings;
        return processStart;
    };
    test.onRun = [] { readingsBeforeTheRun = readings; };
    measurement.measure(&test);
    currentClocks.timeOfDay = fakeClock::timeOfDay;
    QCOMPARE(readingsBeforeTheRun, 1);
    QCOMPARE(readings, 2);
}

void tst_benchAndMeasure::bothClocks()
{
    test.onRun = [] {
        fakeClock::pass(milliseconds(5));
        fakeClock::passUnseen(std::chrono::nanoseconds(123'456));
    };
    measurement.measure(&test);
    QCOMPARE(measurement.getLatestSpan().official, 0.005F);
    QCOMPARE(measurement.getLatestSpan().fine.count(), 5'123'456);
    test.onRun = [] { fakeClock::set(QTime(11, 0)); };
    measurement.measure(&test);
    QCOMPARE(measurement.getLatestSpan().fine.count(), 0);
    QVERIFY(measurement.getLatestSpan().official != 0.0F);
}

/// The official span has no reading of the other clock in it.
void tst_benchAndMeasure::fineClockIsReadOutside()
{
    static QByteArray order;
    order.clear();
    currentClocks = {[] {
                         order += 'o';
                         return processStart;
                     },
                     [] {
                         order += 'f';
                         return std::chrono::steady_clock::time_point();
                     }};
    test.onRun = [] { order += 'r'; };
    measurement.measure(&test);
    currentClocks = {fakeClock::timeOfDay, fakeClock::steady};
    QCOMPARE(order, QByteArray("forof"));
}

void tst_benchAndMeasure::stopwatchWraps_data()
{
    QTest::addColumn<QTime>("start");
    QTest::addColumn<QTime>("end");
    QTest::addColumn<int>("elapsed");
    QTest::addRow("at once") << QTime(8, 0) << QTime(8, 0) << 0;
    QTest::addRow("same day") << QTime(8, 0) << QTime(20, 0, 0, 1) << 43'200'001;
    QTest::addRow("over midnight") << QTime(23, 59, 59, 999) << QTime(0, 0) << 1;
    QTest::addRow("nearly a day") << QTime(8, 0) << QTime(7, 59, 59, 999) << 86'399'999;
}

void tst_benchAndMeasure::stopwatchWraps()
{
    QFETCH(QTime, start);
    QFETCH(QTime, end);
    QFETCH(int, elapsed);
    fakeClock::set(start);
    const stopwatch watch;
    fakeClock::set(end);
    QCOMPARE(watch.elapsed(), elapsed);
}

void tst_benchAndMeasure::steadyStopwatchTruncates()
{
    const steadyStopwatch watch;
    QCOMPARE(watch.elapsed(), 0);
    fakeClock::passUnseen(std::chrono::nanoseconds(1'999'999));
    QCOMPARE(watch.elapsed(), 1);
    fakeClock::passUnseen(std::chrono::nanoseconds(1));
    QCOMPARE(watch.elapsed(), 2);
    fakeClock::set(QTime(1, 0));
    QCOMPARE(watch.elapsed(), 2);
}

void tst_benchAndMeasure::systemClocksGoOn()
{
    const QTime earlier = QTime::currentTime();
    const QTime between = systemClocks.timeOfDay();
    const QTime later = QTime::currentTime();
    if (earlier <= later) // else midnight has passed
        QVERIFY(earlier <= between && between <= later);
    const auto start = std::chrono::steady_clock::now();
    const auto now = systemClocks.steady();
    QVERIFY(start <= now && now <= std::chrono::steady_clock::now());
}

QTEST_APPLESS_MAIN(tst_benchAndMeasure)
#include "tst_benchAndMeasure.moc"
