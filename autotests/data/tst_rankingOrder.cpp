// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/ranking.h"

#include "randomRanking.h"
#include "rankingModel.h"
#include "support/rankedLists.h"

#include <QtTest>

#include <random>
#include <utility>

using namespace ranking;
using namespace rankedLists;

namespace
{

constexpr quint32 firstSeed = 20240229;
// With the sanitizers a list takes forty times as long.
#ifdef FENNICK_TEST_SANITIZED
constexpr int randomLists = 600;
#else
constexpr int randomLists = 6000;
#endif

choices asChoices(const rankingModel::wish &wish)
{
    choices wanted;
    wanted.kind = static_cast<testKind>(wish.kind);
    wanted.mode = static_cast<selectionMode>(wish.mode);
    wanted.count = wish.count;
    wanted.osMask = wish.osMask;
    wanted.isMerged = wish.isMerged;
    wanted.isPerClock = wish.isPerClock;
    return wanted;
}

QVector<benchResults> rank(const randomRanking &random)
{
    testList tests;
    for (const rankingModel::testFacts &test : random.tests)
        tests.append({test.name, test.isMulticore, test.isSingleOnly});
    return rankedMachines(random.machines, tests, asChoices(random.wanted));
}

QString scored(const benchResults &entry)
{
    return QStringLiteral("%1|").arg(double(entry.getScore()), 0, 'g', 9)
           + randomRanking::describe(entry);
}

/// Where @p shown differs from @p model, or nothing. Scores must be the same at every place; of
/// machines of one score any may stand there, each once.
QString difference(const QVector<benchResults> &shown, const rankingModel::ranking &model)
{
    if (shown.size() != model.shown.size())
        return QStringLiteral("%1 shown, not %2").arg(shown.size()).arg(model.shown.size());
    if (shown.isEmpty())
        return {};
    QStringList unused;
    for (const benchResults &entry : model.machines)
        unused.append(scored(entry));
    const QString user = unused.last();
    for (int i = 0; i < shown.size(); ++i) {
        const QString text = scored(shown[i]);
        const float score = model.machines[model.shown[i]].getScore();
        if (!isSame(shown[i].getScore(), score)) {
            return QStringLiteral("place %1 has not the score %2: %3")
                .arg(i)
                .arg(double(score), 0, 'g', 9)
                .arg(text);
        }
        if (!unused.removeOne(text))
            return QStringLiteral("place %1 has another machine: %2").arg(i).arg(text);
        if (!shown[i].isSelected())
            return QStringLiteral("place %1 is not marked").arg(i);
    }
    if (scored(shown.last()) != user)
        return QStringLiteral("this machine is not the last");
    return {};
}

} // namespace

class tst_rankingOrder : public QObject
{
    Q_OBJECT

private slots:
    void order();
    void notANumberRanksLast();
    void manyThatAreNoNumbers();
    void equalScoresKeepTheirOrder_data();
    void equalScoresKeepTheirOrder();
    void selection_data();
    void selection();
    void formerFlagsAreForgotten();
    void likeTheModel();
};

void tst_rankingOrder::order()
{
    const auto user = measured(machineWith(QStringLiteral("you"), linuxWord, 1000));
    const auto shown = rankedMachines({machineWith(QStringLiteral("e"), linuxWord, -1),
                                       machineWith(QStringLiteral("b"), linuxWord, 2000),
                                       machineWith(QStringLiteral("f"), linuxWord, -infinity),
                                       machineWith(QStringLiteral("d"), linuxWord, 0),
                                       machineWith(QStringLiteral("c"), linuxWord, 1),
                                       machineWith(QStringLiteral("a"), linuxWord, infinity), user},
                                      usualTests(), everything());
    QCOMPARE(names(shown), words("a b c d e f you"));
}

void tst_rankingOrder::notANumberRanksLast()
{
    const auto user = measured(machine(QStringLiteral("you"), {{single, 10}}));
    const auto shown = rankedMachines({machine(QStringLiteral("lacking"), {}),
                                       machine(QStringLiteral("low"), {{single, -infinity}}),
                                       machine(QStringLiteral("odd"), {{single, notANumber}}),
                                       machine(QStringLiteral("high"), {{single, 20}}), user},
                                      usualTests(), everything());
    QCOMPARE(names(shown).mid(0, 2), words("high low"));
    QVERIFY(std::isnan(shown[2].getScore()));
    QVERIFY(std::isnan(shown[3].getScore()));
    QCOMPARE(shown.last().getName(), QStringLiteral("you"));
    QCOMPARE(barValue(shown[2], allTests, QString()), 0.0001F);
}

/// Comparing with > alone is no order of scores that are not numbers.
void tst_rankingOrder::manyThatAreNoNumbers()
{
    std::mt19937 source(firstSeed);
    for (int size = 2; size < 400; size += 3) {
        const quint32 share = 1 + source() % 8;
        QVector<benchResults> machines;
        for (int i = 0; i < size; ++i) {
            const auto result = float(1 + source() % 1000);
            const bool isNumber = source() % 8 >= share;
            machines.append(
                machineWith(QString::number(i), linuxWord, isNumber ? result : notANumber));
        }
        machines.append(measured(machineWith(QStringLiteral("you"), linuxWord, 100)));
        const auto shown = rankedMachines(machines, usualTests(), everything());
        QCOMPARE(shown.size(), machines.size());
        for (int i = 1; i < shown.size() - 1; ++i) {
            const float left = shown[i - 1].getScore();
            const float right = shown[i].getScore();
            QVERIFY(std::isnan(right) || left >= right);
        }
        QStringList before = names(machines);
        QStringList after = names(shown);
        before.sort();
        after.sort();
        QCOMPARE(after, before);
        QCOMPARE(shown.last().getName(), QStringLiteral("you"));
    }
}

void tst_rankingOrder::equalScoresKeepTheirOrder_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("scores");
    // Below and above what a sort does with its own method for a few.
    for (const int size : {2, 3, 7, 8, 20, 300}) {
        for (const int scores : {1, 2, 5})
            QTest::addRow("%d machines, %d scores", size, scores) << size << scores;
    }
}

/// Better with each other, as with >=, is no order either: a sort may do anything then.
void tst_rankingOrder::equalScoresKeepTheirOrder()
{
    QFETCH(int, size);
    QFETCH(int, scores);
    QVector<benchResults> machines;
    for (int i = 0; i < size; ++i) {
        const bool isNumber = i % (scores + 1) < scores;
        const float result = isNumber ? float(100 + i % (scores + 1)) : notANumber;
        machines.append(machineWith(QString::number(i), linuxWord, result));
    }
    machines.append(measured(machineWith(QStringLiteral("you"), linuxWord, 100)));
    const auto shown = rankedMachines(machines, usualTests(), everything());
    QCOMPARE(shown.size(), machines.size());
    for (int i = 1; i < size; ++i) {
        if (isSame(shown[i - 1].getScore(), shown[i].getScore()))
            QVERIFY(shown[i - 1].getName().toInt() < shown[i].getName().toInt());
    }
}

void tst_rankingOrder::selection_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("count");
    QTest::addColumn<QStringList>("ranks");
    const auto row = [](const char *name, int size, int mode, int count, const char *ranks) {
        QTest::newRow(name) << size << mode << count << words(ranks);
    };
    row("mixed, every fifth", 100, 0, 20,
        "0 5 10 15 20 25 30 35 40 45 50 55 60 65 70 75 80 85 90 95");
    // Steps of a half: 9.5 rounds to 10, which is none.
    row("mixed, fewer than the count", 10, 0, 20, "0-8");
    row("mixed, steps of a quarter", 5, 0, 20, "0-3");
    row("mixed, as many as the count", 20, 0, 20, "0-18");
    row("mixed, two", 2, 0, 20, "0");
    // Steps of one and a half; halves round up, whether the number before them is even or odd.
    row("mixed, halves", 30, 0, 20, "0 2-3 5-6 8-9 11-12 14-15 17-18 20-21 23-24 26-27");
    row("mixed, one and a quarter", 25, 0, 20, "0-1 3-6 8-11 13-16 18-21 23");
    row("mixed, thirds", 100, 0, 30,
        "0 3 7 10 13 17 20 23 27 30 33 37 40 43 47 50 53 57 60 63 67 70 73 77 80 83 87 90 93 97");
    row("top", 100, 1, 25, "0-24");
    row("top, fewer than the count", 10, 1, 20, "0-8");
    row("top, as many as the count", 20, 1, 20, "0-18");
    row("top, as many besides this one", 21, 1, 20, "0-19");
    row("top, one left out", 22, 1, 20, "0-19");
    row("medium, an odd count", 100, 2, 25, "38-61");
    row("medium, an even count", 100, 2, 20, "40-59");
    row("medium, odd sizes", 41, 2, 20, "10-29");
    row("medium, both odd", 31, 2, 21, "5-24");
    row("medium, fewer than the count", 10, 2, 20, "0-8");
    row("medium, just all", 21, 2, 20, "0-19");
    row("medium, the first left out", 23, 2, 20, "1-20");
    row("medium, a few", 3, 2, 50, "0-1");
    row("last", 100, 3, 25, "74-98");
    row("last, fewer than the count", 10, 3, 20, "0-8");
    row("last, all but one", 22, 3, 20, "1-20");
    row("last, as many besides this one", 21, 3, 20, "0-19");
    row("last, as many as the count", 20, 3, 20, "0-18");
    row("all", 100, 4, 20, "0-98");
    row("all, a few", 3, 4, 50, "0-1");
}

void tst_rankingOrder::selection()
{
    QFETCH(int, size);
    QFETCH(int, mode);
    QFETCH(int, count);
    QFETCH(QStringList, ranks);
    QStringList expected;
    for (const QString &range : ranks) {
        const QStringList ends = range.split(QLatin1Char('-'));
        for (int rank = ends.first().toInt(); rank <= ends.last().toInt(); ++rank)
            expected.append(QString::number(rank));
    }
    expected.append(QStringLiteral("you"));

    QVector<benchResults> machines;
    for (int rank = 0; rank < size - 1; ++rank)
        machines.append(machineWith(QString::number(rank), linuxWord, 1000.0F - float(rank)));
    std::mt19937 source(firstSeed);
    for (int i = machines.size() - 1; i > 0; --i)
        std::swap(machines[i], machines[int(source() % quint32(i + 1))]);
    machines.append(measured(machineWith(QStringLiteral("you"), linuxWord, 1500)));

    choices wanted;
    wanted.kind = singleCoreTests;
    wanted.mode = static_cast<selectionMode>(mode);
    wanted.count = count;
    const auto found = rankedMachines(machines, usualTests(), wanted);
    QCOMPARE(names(found), expected);
    for (const benchResults &entry : found)
        QVERIFY(entry.isSelected());
}

void tst_rankingOrder::formerFlagsAreForgotten()
{
    QVector<benchResults> machines;
    for (int rank = 0; rank < 60; ++rank) {
        machines.append(machineWith(QString::number(rank), linuxWord, 1000.0F - float(rank)));
        machines.last().setSelected(true);
        machines.last().setScore(77);
    }
    machines.append(measured(machineWith(QStringLiteral("you"), linuxWord, 1000)));
    choices wanted;
    for (const bool isMerged : {false, true}) {
        wanted.isMerged = isMerged;
        wanted.mode = topDevices;
        const auto shown = rankedMachines(machines, usualTests(), wanted);
        QCOMPARE(shown.size(), 21);
        QCOMPARE(shown.first().getScore(), 100.0F);
        QCOMPARE(shown[19].getName(), QStringLiteral("19"));
    }
    // What was chosen once has no say the next time.
    wanted.mode = lastDevices;
    const auto again =
        rankedMachines(rankedMachines(machines, usualTests(), everything()), usualTests(), wanted);
    QCOMPARE(again.size(), 21);
    QCOMPARE(again.first().getName(), QStringLiteral("40"));
}

void tst_rankingOrder::likeTheModel()
{
    for (quint32 seed = firstSeed; seed < firstSeed + randomLists; ++seed) {
        const randomRanking random(seed);
        const auto model = rankingModel::rank(random.machines, random.tests, random.wanted);
        const QString found = difference(rank(random), model);
        QVERIFY2(found.isEmpty(),
                 qPrintable(QStringLiteral("seed %1: %2\n%3").arg(seed).arg(found, random.text())));
    }
}

QTEST_APPLESS_MAIN(tst_rankingOrder)
#include "tst_rankingOrder.moc"
