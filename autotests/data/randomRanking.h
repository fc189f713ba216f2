// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "rankingModel.h"

#include <QString>

#include <limits>
#include <random>

/// A random list of machines, the tests it is ranked by, and what is asked of it; the same for one
/// seed on every system.
class randomRanking
{
public:
    explicit randomRanking(quint32 seed) : source(seed)
    {
        addTests();
        isWild = oneIn(3);
        const int size = oneIn(10) ? below(3) : oneIn(8) ? below(160) : below(60);
        for (int i = 0; i < size; ++i)
            machines.append(machine());
        if (!machines.isEmpty())
            machines.last().setMeasured(!oneIn(3));
        wanted.kind = below(4);
        wanted.mode = below(5);
        wanted.count = oneIn(4) ? 1 + below(60) : 20 + 5 * below(7);
        wanted.osMask = oneIn(2) ? 7 : below(8);
        wanted.isMerged = oneIn(2);
        wanted.isPerClock = oneIn(2);
    }

    /// All of it, to be read after a failure.
    QString text() const
    {
        QString lines = QStringLiteral("kind %1 mode %2 count %3 mask %4 merged %5 per clock %6\n")
                            .arg(wanted.kind)
                            .arg(wanted.mode)
                            .arg(wanted.count)
                            .arg(wanted.osMask)
                            .arg(wanted.isMerged)
                            .arg(wanted.isPerClock);
        for (const rankingModel::testFacts &test : tests) {
            lines +=
                QStringLiteral("test %1%2%3\n")
                    .arg(test.name, test.isMulticore ? QStringLiteral(" multicore") : QString(),
                         test.isSingleOnly ? QStringLiteral(" alone") : QString());
        }
        for (const benchResults &entry : machines)
            lines += describe(entry) + QLatin1Char('\n');
        return lines;
    }

    /// A machine with all its fields but the working ones, floats by their shortest exact texts.
    static QString describe(const benchResults &entry)
    {
        QString line = QStringLiteral("%1|%2|%3|%4 threads|%5 Hz|measured %6")
                           .arg(entry.getName(), entry.getOs(), entry.getCpu())
                           .arg(entry.getThreads())
                           .arg(double(entry.getFrequency()), 0, 'g', 9)
                           .arg(entry.isMeasured());
        for (auto i = entry.getTests().cbegin(); i != entry.getTests().cend(); ++i) {
            const QString value = QString::number(double(i->value), 'g', 9);
            line += QStringLiteral("|%1=%2").arg(i.key(), value);
        }
        return line;
    }

    QVector<rankingModel::testFacts> tests;
    QVector<benchResults> machines;
    rankingModel::wish wanted;

private:
    // The standard's distributions differ between libraries, its engines do not.
    int below(int bound) { return int(source() % quint32(bound)); }
    bool oneIn(int chances) { return below(chances) == 0; }

    void addTests()
    {
        const int size = oneIn(20) ? 0 : 1 + below(8);
        for (int i = 0; i < size; ++i) {
            const bool isSecondOfAName = i > 0 && oneIn(20);
            tests.append({isSecondOfAName ? tests[i - 1].name : QStringLiteral("t%1").arg(i),
                          oneIn(2), oneIn(6)});
        }
    }

    float positive()
    {
        const auto mantissa = float(1 + below(1 << 24));
        return mantissa / float(1 << below(24));
    }

    float result()
    {
        constexpr float infinity = std::numeric_limits<float>::infinity();
        constexpr float odd[] = {0,         -0.0F, infinity,
                                 -infinity, -7.5F, 1e-42F,
                                 3e38F,     1,     std::numeric_limits<float>::quiet_NaN()};
        return isWild && oneIn(6) ? odd[below(9)] : positive();
    }

    QString machineName()
    {
        static const QStringList stems = {
            QStringLiteral("pc"),    QStringLiteral("zebra"), QStringLiteral("_x"),
            QStringLiteral("ärger"), QStringLiteral("a b"),   QString(),
        };
        QString name = stems[below(stems.size())];
        if (!oneIn(4))
            name += QString::number(below(30));
        for (QChar &letter : name) {
            if (oneIn(2))
                letter = letter.toUpper();
        }
        return name;
    }

    benchResults machine()
    {
        static const QStringList words = {
            QStringLiteral("android"), QStringLiteral("linux"), QStringLiteral("windows"),
            QStringLiteral("linux"),   QStringLiteral("Linux"), QString(),
        };
        // The processor numbers the machines, so that no two are the same. Braces fix the order in
        // which the numbers are drawn.
        benchResults entry{machineName(), words[below(oneIn(4) ? words.size() : 4)],
                           QStringLiteral("cpu %1").arg(machines.size()),
                           isWild && oneIn(8) ? 0 : positive() * 1e6F,
                           isWild && oneIn(8) ? 0 : 1 + below(64)};
        const bool isPoor = oneIn(8);
        for (const rankingModel::testFacts &test : tests) {
            if (!oneIn(isPoor ? 2 : 30))
                entry.setTest(test.name, benchResults::test(result()));
        }
        if (oneIn(5))
            entry.setTest(QStringLiteral("of another suite"), benchResults::test(result()));
        entry.setScore(positive());
        entry.setSelected(oneIn(3));
        return entry;
    }

    std::mt19937 source;
    bool isWild = false;
};
