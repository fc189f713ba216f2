// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "data/ranking.h"

#include <QPair>
#include <QStringList>

#include <bit>
#include <cmath>
#include <limits>

/// Lists of machines to be ranked, and what is asked about them.
namespace rankedLists
{

using resultList = QVector<QPair<QString, float>>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float notANumber = std::numeric_limits<float>::quiet_NaN();

inline const QString single = QStringLiteral("single");
inline const QString multi = QStringLiteral("multi");
inline const QString alone = QStringLiteral("alone");
inline const QString linuxWord = QStringLiteral("linux");

using testList = QVector<ranking::rankedTest>;

inline testList usualTests()
{
    return {{single, false}, {multi, true}, {alone, false, true}};
}

inline benchResults machine(const QString &name, const resultList &results, float clock = 1e9F,
                            int threads = 1)
{
    benchResults entry(name, linuxWord, QStringLiteral("cpu of ") + name, clock, threads);
    for (const auto &result : results)
        entry.setTest(result.first, benchResults::test(result.second));
    return entry;
}

inline benchResults machineWith(const QString &name, const QString &os, float result)
{
    benchResults entry(name, os, QStringLiteral("cpu %1").arg(double(result)), 1e9F, 4);
    entry.setTest(single, benchResults::test(result));
    return entry;
}

inline benchResults measured(benchResults entry)
{
    entry.setMeasured(true);
    return entry;
}

inline ranking::choices everything(ranking::testKind kind = ranking::allTests)
{
    ranking::choices wanted;
    wanted.kind = kind;
    wanted.mode = ranking::allDevices;
    return wanted;
}

inline QStringList names(const QVector<benchResults> &machines)
{
    QStringList list;
    for (const benchResults &entry : machines)
        list.append(entry.getName());
    return list;
}

inline QStringList words(const char *text)
{
    return QString::fromUtf8(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

inline float resultOf(const benchResults &entry, const QString &test)
{
    return entry.getTests().value(test, benchResults::test(-1)).value;
}

inline bool isSame(float left, float right)
{
    return std::isnan(left) ? std::isnan(right)
                            : std::bit_cast<quint32>(left) == std::bit_cast<quint32>(right);
}

} // namespace rankedLists
