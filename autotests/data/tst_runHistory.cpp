// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/runHistory.h"

#include "data/runValues.h"
#include "runFixtures.h"

#include <QtTest>

class tst_runHistory : public QObject
{
    Q_OBJECT

private slots:
    void testNames();
    void ofOneTest();
    void ofTheMean();
    void judgements();
    void units();
};

namespace
{

/// A run of "mandel" and "lines" with rounds of @p mean seconds, @p day days after the first.
runRecord runOf(int day, double mean, const char *version = "26.0")
{
    runRecord run = repeatedRun(1, 1, mean);
    run.started = QDateTime(QDate(2026, 1, 1 + day), QTime(12, 0));
    run.build.version = QString::fromLatin1(version);
    return run;
}

} // namespace

void tst_runHistory::testNames()
{
    runRecord other = runOf(1, 0.1);
    other.tests.back().name = QStringLiteral("colors ");
    QCOMPARE(testNamesOf({runOf(0, 0.1), other}),
             QStringList(
                 {QStringLiteral("mandel"), QStringLiteral("lines"), QStringLiteral("colors ")}));
    QVERIFY(testNamesOf(std::vector<runRecord>()).isEmpty());
}

void tst_runHistory::ofOneTest()
{
    runRecord without = runOf(1, 0.1);
    without.tests.erase(without.tests.begin()); // mandel
    const std::vector<runRecord> runs = {runOf(0, 0.1), without, runOf(2, 0.2, "27.0")};
    const auto points = historyOf(runs, QStringLiteral("mandel"));
    QCOMPARE(points.size(), std::size_t(2));
    QCOMPARE(points[0].run, 0);
    QCOMPARE(points[1].run, 2);
    QCOMPARE(points[1].when, runs[2].started);
    QCOMPARE(points[1].version, QStringLiteral("27.0"));
    QCOMPARE(points[1].value, *valueOf(runs[2], QStringLiteral("mandel")));
    QVERIFY(std::abs(points[0].value / points[1].value - 2) < 0.05);
    QCOMPARE(historyOf(runs, QStringLiteral("lines")).size(), std::size_t(3));
    QVERIFY(historyOf(runs, QStringLiteral("unknown")).empty());
}

void tst_runHistory::ofTheMean()
{
    const auto points = historyOf({runOf(0, 0.1), runOf(1, 0.2)});
    QCOMPARE(points.size(), std::size_t(2));
    QCOMPARE(points[0].value, 100.0);
    QVERIFY(std::abs(points[1].value - 50) < 2);
    QVERIFY(historyOf({}).empty());
}

void tst_runHistory::judgements()
{
    runRecord run = runOf(0, 0.1);
    QCOMPARE(
        historyOf({run}, QStringLiteral("mandel"))[0].judgement.section(QLatin1Char(';'), 0, 0),
        QStringLiteral("good"));
    QVERIFY(historyOf({run})[0].judgement.startsWith(QStringLiteral("2 of 2 tests good")));
    run.tests[0].rounds.resize(2);
    run.isStopped = true;
    QVERIFY(historyOf({run}, QStringLiteral("mandel"))[0].judgement.startsWith(
        QStringLiteral("too few rounds to tell")));
    QVERIFY(historyOf({run})[0].judgement.startsWith(
        QStringLiteral("1 of 2 tests good; stopped before its end")));
}

void tst_runHistory::units()
{
    const runRecord run = runOf(0, 0.1);
    QCOMPARE(unitOf({run}, QStringLiteral("mandel")), run.tests[0].unit + QStringLiteral("/s"));
    QCOMPARE(unitOf({run}, QStringLiteral("unknown")), QString());
}

QTEST_APPLESS_MAIN(tst_runHistory)
#include "tst_runHistory.moc"
