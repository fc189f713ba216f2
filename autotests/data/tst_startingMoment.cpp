// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/startingMoment.h"
#include "support/fakeClock.h"
#include "support/systemTree.h"

#include <QtTest>

class tst_startingMoment : public QObject
{
    Q_OBJECT

private slots:
    void watches_data();
    void watches();
    void unknownTime();
};

void tst_startingMoment::watches_data()
{
    QTest::addColumn<QByteArray>("average");
    QTest::addColumn<int>("ticks");       // that others use in half a second
    QTest::addColumn<double>("expected"); // below 0: not watched
    QTest::newRow("unknown average") << QByteArray() << 50 << -1.0;
    QTest::newRow("quiet") << QByteArray("0.40 0.5 0.5 1/100 1000\n") << 50 << -1.0;
    QTest::newRow("what has ended") << QByteArray("3.50 0.5 0.5 1/100 1000\n") << 0 << 0.0;
    QTest::newRow("one busy neighbour") << QByteArray("0.41 0.5 0.5 1/100 1000\n") << 50 << 1.0;
    QTest::newRow("three") << QByteArray("3.50 0.5 0.5 1/100 1000\n") << 150 << 3.0;
}

void tst_startingMoment::watches()
{
    QFETCH(QByteArray, average);
    QFETCH(int, ticks);
    QFETCH(double, expected);
    const fakeClock clock;
    const systemTree tree({{QStringLiteral("proc/loadavg"), average},
                           {QStringLiteral("proc/stat"), "cpu  1000 0 0 5000 0 0 0 0 0 0\n"}});
    int passed = 0;
    startingMomentSources sources;
    sources.root = tree.root();
    sources.time = {tree.root(), []() -> std::optional<double> { return 0; }};
    sources.pass = [&] {
        ++passed;
        fakeClock::pass(std::chrono::milliseconds(500));
        QVERIFY(tree.write(QStringLiteral("proc/stat"),
                           "cpu  " + QByteArray::number(1000 + ticks) + " 0 0 5000 0 0 0 0 0 0\n"));
    };
    constexpr int fourProcessors = 4;
    const machineMoment moment = readStartingMoment(fourProcessors, sources);
    QCOMPARE(moment.othersLoad.value_or(-1), expected);
    QCOMPARE(passed, expected < 0 ? 0 : 1);
    QCOMPARE(moment.loadAverage.has_value(), !average.isEmpty());
}

/// A system that does not tell leaves the average to say it.
void tst_startingMoment::unknownTime()
{
    const systemTree tree({{QStringLiteral("proc/loadavg"), "3.50 0.5 0.5 1/100 1000\n"}});
    startingMomentSources sources;
    sources.root = tree.root();
    sources.time.root = tree.root();
    sources.pass = [] {};
    QVERIFY(!readStartingMoment(1, sources).othersLoad);
}

QTEST_APPLESS_MAIN(tst_startingMoment)
#include "tst_startingMoment.moc"
