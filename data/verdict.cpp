// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/verdict.h"

#include "data/roundRemarks.h"
#include "data/runValues.h"

#include <algorithm>
#include <iterator>

namespace
{

constexpr double goodSpread = 0.01;
constexpr double noisySpread = 0.025;
constexpr double busyShare = 0.1; ///< of one processor
constexpr double busyLoad = 0.5;  ///< above what a desktop does beside nothing
constexpr double clearlySlower = 1 - noisySpread;

constexpr const char *levelWords[] = {"good", "noisy", "unsteady", "too-few-rounds"};
constexpr const char *remarkWords[] = {"slow-first-rounds", "outliers",     "trend",
                                       "clocks-disagree",   "suspended",    "slower-than-one-core",
                                       "other-processes",   "busy-at-start"};

template <std::size_t size> QString wordAt(const char *const (&words)[size], std::size_t index)
{
    return index < size ? QString::fromLatin1(words[index]) : QString();
}

steadiness levelOf(const statistics &rounds)
{
    if (rounds.count < static_cast<int>(fewestRounds))
        return steadiness::tooFewRounds;
    if (rounds.spread() <= goodSpread)
        return steadiness::good;
    return rounds.spread() <= noisySpread ? steadiness::noisy : steadiness::unsteady;
}

std::optional<remark> slowerRemark(const testRun &test, const runRecord &run)
{
    const int threads = run.settings.threads.value_or(run.machine.threads);
    if (!test.isMulticore || threads < 2)
        return std::nullopt;
    const QString single = QString(test.name).remove(QStringLiteral(" (multicore)"));
    const std::optional<double> oneCore = valueOf(run, single);
    const std::optional<double> allCores = test.value();
    if (single == test.name || !oneCore || !allCores || *allCores >= clearlySlower * *oneCore)
        return std::nullopt;
    return remark{
        remarkKind::slowerThanOneCore,
        QStringLiteral("on %1 threads it gives %2 times what one core gives")
            .arg(QString::number(threads), QString::number(*allCores / *oneCore, 'f', 2))};
}

std::optional<remark> othersRemark(const testRun &test)
{
    if (!test.otherProcesses || !(test.wallSeconds > 0))
        return std::nullopt;
    const double share = *test.otherProcesses / test.wallSeconds;
    if (!(share > busyShare))
        return std::nullopt;
    return remark{remarkKind::otherProcesses,
                  QStringLiteral("other processes took %1 % of a processor meanwhile")
                      .arg(100 * share, 0, 'f', 0)};
}

} // namespace

QString wordOf(steadiness level)
{
    return wordAt(levelWords, static_cast<std::size_t>(level));
}

QString textOf(steadiness level)
{
    return level == steadiness::tooFewRounds ? QStringLiteral("too few rounds to tell")
                                             : wordOf(level);
}

QString wordOf(remarkKind kind)
{
    return wordAt(remarkWords, static_cast<std::size_t>(kind));
}

verdict verdictOf(const testRun &test, const runRecord &run)
{
    verdict result;
    result.rounds = statisticsOf(countedSpans(test.rounds));
    result.level = levelOf(result.rounds);
    result.remarks = remarksOn(test.rounds);
    for (const auto &found : {slowerRemark(test, run), othersRemark(test)}) {
        if (found)
            result.remarks.push_back(*found);
    }
    return result;
}

std::vector<remark> remarksOf(const runRecord &run)
{
    const double load = run.context.atStart.loadAverage.value_or(0);
    // The average still counts what ended a minute before, such as another run of ours. What others
    // took during each test says more.
    const bool isWatched =
        !run.tests.empty()
        && std::all_of(run.tests.begin(), run.tests.end(),
                       [](const testRun &test) { return test.otherProcesses.has_value(); });
    if (isWatched || !(load > busyLoad))
        return {};
    return {{remarkKind::busyAtStart,
             QStringLiteral("the load average was %1 at the start").arg(load, 0, 'f', 2)}};
}
