// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runProgress.h"

#include "support/fakeClock.h"
#include "support/fakeTest.h"

#include <QtTest>

using std::chrono::milliseconds;

class tst_runProgress : public QObject
{
    Q_OBJECT

private slots:
    void beforeTheFirstTest();
    void placeAndTime();
    void failedTestCounts();
    void values();
    void spread_data();
    void spread();
    void nothingLeftOver();
};

void tst_runProgress::beforeTheFirstTest()
{
    const runProgress progress(3, milliseconds(8000));
    QCOMPARE(progress.place(), 0);
    QCOMPARE(progress.testCount(), 3);
    QCOMPARE(progress.left(), milliseconds(24'000));
    QCOMPARE(progress.share(), 0.0);
    QCOMPARE(progress.testName(), QString());
    QCOMPARE(progress.medianText(), QString());
    QCOMPARE(runProgress(0, milliseconds(0)).share(), 0.0);
}

void tst_runProgress::placeAndTime()
{
    const fakeClock clock;
    runProgress progress(4, milliseconds(8000));
    fakeTest test(QStringLiteral("colors "), nullptr);
    progress.testStarts(test, {});
    QCOMPARE(progress.testName(), QStringLiteral("colors"));
    QCOMPARE(progress.share(), 0.0);
    fakeClock::pass(milliseconds(4000));
    QCOMPARE(progress.left(), milliseconds(28'000));
    QCOMPARE(progress.share(), 0.125);
    // The last round may take longer than there is time.
    fakeClock::pass(milliseconds(6000));
    QCOMPARE(progress.share(), 0.25);
    progress.testEnded(test, testEnd::complete, 1);
    QCOMPARE(progress.left(), milliseconds(24'000));
    fakeClock::pass(milliseconds(500));
    progress.testStarts(test, {});
    QCOMPARE(progress.place(), 2);
    QCOMPARE(progress.left(), milliseconds(24'000));
    QCOMPARE(progress.share(), 0.25);
}

/// A test that could not be set up is over, too.
void tst_runProgress::failedTestCounts()
{
    const fakeClock clock;
    runProgress progress(2, milliseconds(8000));
    const fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    progress.testEnded(test, testEnd::failed, 0);
    QCOMPARE(progress.share(), 0.5);
    progress.testStarts(test, {});
    progress.testEnded(test, testEnd::failed, 0);
    QCOMPARE(progress.share(), 1.0);
    QCOMPARE(progress.left(), milliseconds(0));
}

void tst_runProgress::values()
{
    const fakeClock clock;
    runProgress progress(1, milliseconds(8000));
    fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    QCOMPARE(progress.rounds(), 0);
    for (const int ms : {1000, 1500, 4000})
        progress.roundMeasured({0, milliseconds(ms)});
    QCOMPARE(progress.rounds(), 3);
    QCOMPARE(progress.medianText(), QStringLiteral("2 MFakes/s"));
    progress.testStarts(test, {});
    QCOMPARE(progress.rounds(), 0);
    QCOMPARE(progress.spreadText(), QString());
}

void tst_runProgress::spread_data()
{
    QTest::addColumn<QVector<int>>("spans"); // in milliseconds
    QTest::addColumn<QString>("expected");
    QTest::newRow("none") << QVector<int>() << QString();
    QTest::newRow("one") << QVector<int>{5} << QString();
    QTest::newRow("alike") << QVector<int>{5, 5, 5} << QStringLiteral("0.0 %");
    // Their mean is 5, and the squared distances add up to 32 over 7.
    QTest::newRow("eight") << QVector<int>{2, 4, 4, 4, 5, 5, 7, 9} << QStringLiteral("42.8 %");
    QTest::newRow("without length") << QVector<int>{0, 0} << QString();
}

void tst_runProgress::spread()
{
    QFETCH(QVector<int>, spans);
    runProgress progress(1, milliseconds(8000));
    const fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    for (const int ms : qAsConst(spans))
        progress.roundMeasured({0, milliseconds(ms)});
    QTEST(progress.spreadText(), "expected");
}

void tst_runProgress::nothingLeftOver()
{
    const fakeClock clock;
    runProgress progress(1, milliseconds(8000));
    fakeTest test(QStringLiteral("t"), nullptr);
    progress.testStarts(test, {});
    progress.roundMeasured({0, milliseconds(1000)});
    progress.testEnded(test, testEnd::complete, 1);
    // The test may be gone by now.
    QCOMPARE(progress.medianText(), QString());
    QCOMPARE(progress.testName(), QString());
}

QTEST_APPLESS_MAIN(tst_runProgress)
#include "tst_runProgress.moc"
