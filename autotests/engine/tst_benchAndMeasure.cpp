// SPDX-License-Identifier: GPL-3.0-or-later
#include "engine/benchAndMeasure.h"

#include "engine/stopwatch.h"
#include "support/fakeTest.h"

#include <QtTest>

#include <cmath>

namespace
{

/// Returns at a change of the wall clock's millisecond, @p ms such changes later: a span that the
/// 1 ms stopwatch sees as at least that long.
void passMilliseconds(int ms)
{
    const stopwatch watch;
    while (watch.elapsed() < ms) {
    }
}

} // namespace

class tst_benchAndMeasure : public QObject
{
    Q_OBJECT

private slots:
    void oneRun();
    void statistics();
    void resetKeepsTheAverage();
    void onlyRunIsTimed();
    void callOrder();
    void withoutTest();
    void spansAreWholeMilliseconds();
};

void tst_benchAndMeasure::oneRun()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    test.onRun = [] { passMilliseconds(5); };
    benchAndMeasure measurement;
    measurement.reset();
    const float span = measurement.measure(&test);
    QVERIFY2(span >= 0.0049F, qPrintable(QString::number(static_cast<double>(span))));
    QCOMPARE(measurement.getCount(), 1U);
    QCOMPARE(measurement.getTotal(), span);
    QCOMPARE(measurement.getMinimum(), span);
    QCOMPARE(measurement.getMaximum(), span);
    QCOMPARE(measurement.getAverage(), span);
}

void tst_benchAndMeasure::statistics()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    benchAndMeasure measurement;
    measurement.reset();
    float total = 0;
    float smallest = 1e6F;
    float largest = 0;
    for (const int ms : {3, 9, 1, 0}) {
        test.onRun = [ms] { passMilliseconds(ms); };
        const float span = measurement.measure(&test);
        total += span;
        smallest = std::min(smallest, span);
        largest = std::max(largest, span);
    }
    QCOMPARE(measurement.getCount(), 4U);
    QCOMPARE(measurement.getTotal(), total);
    QCOMPARE(measurement.getMinimum(), smallest);
    QCOMPARE(measurement.getMaximum(), largest);
    QVERIFY(largest >= 0.008F);
    QCOMPARE(measurement.getAverage(), measurement.getTotal() / 4.0F);
}

void tst_benchAndMeasure::resetKeepsTheAverage()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    test.onRun = [] { passMilliseconds(4); };
    benchAndMeasure measurement;
    measurement.reset();
    measurement.measure(&test);
    const float average = measurement.getAverage();
    QVERIFY(average > 0);
    measurement.reset();
    QCOMPARE(measurement.getCount(), 0U);
    QCOMPARE(measurement.getTotal(), 0.0F);
    QCOMPARE(measurement.getMinimum(), 1'000'000.0F);
    QCOMPARE(measurement.getMaximum(), 0.0F);
    QCOMPARE(measurement.getAverage(), average);
}

void tst_benchAndMeasure::onlyRunIsTimed()
{
    class slowAround : public fakeTest
    {
    public:
        using fakeTest::fakeTest;
        void preRun() override { passMilliseconds(400); }
        void postRun() override { passMilliseconds(400); }
    };
    slowAround test(QStringLiteral("t"), nullptr);
    benchAndMeasure measurement;
    measurement.reset();
    // Far above what an empty run can take even on a crowded machine, far below the rest.
    QVERIFY(measurement.measure(&test) < 0.3F);
}

void tst_benchAndMeasure::callOrder()
{
    QStringList log;
    fakeTest test(QStringLiteral("t"), &log);
    benchAndMeasure measurement;
    measurement.reset();
    measurement.measure(&test);
    QCOMPARE(log, QStringList({QStringLiteral("t.preRun"), QStringLiteral("t.run"),
                               QStringLiteral("t.postRun")}));
}

void tst_benchAndMeasure::withoutTest()
{
    benchAndMeasure measurement;
    measurement.reset();
    QVERIFY(measurement.measure(nullptr) >= 0.0F);
    QCOMPARE(measurement.getCount(), 1U);
}

void tst_benchAndMeasure::spansAreWholeMilliseconds()
{
    fakeTest test(QStringLiteral("t"), nullptr);
    test.onRun = [] { passMilliseconds(2); };
    benchAndMeasure measurement;
    measurement.reset();
    for (int i = 0; i < 20; ++i) {
        const double ms = static_cast<double>(measurement.measure(&test)) * 1000.0;
        QVERIFY2(std::abs(ms - std::round(ms)) < 0.05, qPrintable(QString::number(ms)));
    }
}

QTEST_APPLESS_MAIN(tst_benchAndMeasure)
#include "tst_benchAndMeasure.moc"
