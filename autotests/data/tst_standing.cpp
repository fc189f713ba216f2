// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/standing.h"

#include "support/rankedLists.h"

#include <QtTest>

using namespace rankedLists;

class tst_standing : public QObject
{
    Q_OBJECT

private slots:
    void places_data();
    void places();
    void unfinished();
    void emptyList();
};

void tst_standing::places_data()
{
    QTest::addColumn<float>("result"); // of both tests; the unit's is 4
    QTest::addColumn<double>("score");
    QTest::addColumn<int>("place");
    QTest::newRow("the best") << 12.0F << 300.0 << 1;
    QTest::newRow("as good as the best") << 8.0F << 200.0 << 1;
    QTest::newRow("second") << 7.0F << 175.0 << 2;
    QTest::newRow("the unit itself") << 4.0F << 100.0 << 2;
    QTest::newRow("the last") << 1.0F << 25.0 << 4;
}

void tst_standing::places()
{
    QFETCH(float, result);
    const auto of = [](const char *name, float value) {
        return machine(QString::fromLatin1(name), {{single, value}, {multi, value}});
    };
    const auto found = standingOf(of("it", result), of("unit", 4),
                                  {of("a", 2), of("b", 8), of("c", 3)}, usualTests());
    QVERIFY(found.has_value());
    QTEST(found->score, "score");
    QTEST(found->place, "place");
    QCOMPARE(found->machines, 3);
}

/// Scores over other tests than everybody's say nothing.
void tst_standing::unfinished()
{
    const benchResults whole = machine(QStringLiteral("w"), {{single, 4}, {multi, 4}});
    const benchResults half = machine(QStringLiteral("h"), {{single, 4}});
    QVERIFY(standingOf(whole, whole, {whole}, usualTests()).has_value());
    QVERIFY(!standingOf(half, whole, {whole}, usualTests()));
    QVERIFY(!standingOf(whole, half, {whole}, usualTests()));
    QVERIFY(standingOf(whole, whole, {half}, usualTests()).has_value());
}

void tst_standing::emptyList()
{
    const benchResults whole = machine(QStringLiteral("w"), {{single, 4}, {multi, 4}});
    QVERIFY(!standingOf(whole, whole, {}, usualTests()));
}

QTEST_APPLESS_MAIN(tst_standing)
#include "tst_standing.moc"
