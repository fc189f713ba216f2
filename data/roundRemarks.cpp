// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/roundRemarks.h"

#include <boost/math/distributions/normal.hpp>

#include <algorithm>
#include <cmath>
#include <optional>

namespace
{

using series = std::span<const double>;

QString percent(double share)
{
    return QStringLiteral("%1 %").arg(100 * share, 0, 'f', 1);
}

QString seconds(double span)
{
    return QStringLiteral("%1 s").arg(span, 0, 'f', std::abs(span) < 100 ? 3 : 0);
}

double fineSeconds(const roundSpan &round)
{
    return std::chrono::duration<double>(round.fine).count();
}

/// How much longer a round took by the time of day. The official stopwatch wraps after a day, so a
/// clock that was set back shows as a negative difference here.
double aheadOfFine(const roundSpan &round)
{
    constexpr double day = 86400;
    return std::remainder(static_cast<double>(round.official) - fineSeconds(round), day);
}

/// How many rounds at the beginning are slow: further above the median than five robust deviations
/// and half a percent.
std::size_t slowFirst(series spans)
{
    const statistics all = statisticsOf(spans);
    const double limit = all.median + std::max(5 * all.robustDeviation(), 0.005 * all.median);
    const auto usual =
        std::find_if(spans.begin(), spans.end(), [limit](double span) { return span <= limit; });
    return static_cast<std::size_t>(usual - spans.begin());
}

std::optional<remark> slowFirstRemark(series spans, std::size_t count)
{
    if (count == 0)
        return std::nullopt;
    const double slowest = *std::max_element(spans.begin(), spans.begin() + std::ptrdiff_t(count));
    const QString excess = percent(slowest / medianOf(spans) - 1);
    return remark{remarkKind::slowFirstRounds,
                  count == 1
                      ? QStringLiteral("the first round took %1 longer than the median").arg(excess)
                      : QStringLiteral("the first %1 rounds took up to %2 longer than the median")
                            .arg(QString::number(count), excess)};
}

std::optional<remark> outlierRemark(series spans)
{
    const statistics all = statisticsOf(spans);
    const double limit = std::max(10 * all.robustDeviation(), 0.002 * all.median);
    const auto count = std::count_if(spans.begin(), spans.end(), [&](double span) {
        return std::abs(span - all.median) > limit;
    });
    if (count == 0)
        return std::nullopt;
    const bool isHigh = all.maximum - all.median > all.median - all.minimum;
    const double furthest = (isHigh ? all.maximum : all.minimum) / all.median - 1;
    return remark{
        remarkKind::outliers,
        QStringLiteral("%1 of %2 rounds lie far from the others, the furthest %3 %4 the median")
            .arg(QString::number(count), QString::number(spans.size()), percent(std::abs(furthest)),
                 isHigh ? QStringLiteral("above") : QStringLiteral("below"))};
}

/// The medians of at most 64 consecutive blocks: they keep a trend, and lose what neighbours have
/// in common for a moment.
std::vector<double> blockMedians(series spans)
{
    const std::size_t blocks = std::min<std::size_t>(spans.size(), 64);
    std::vector<double> medians;
    for (std::size_t i = 0; i < blocks; ++i) {
        const std::size_t begin = i * spans.size() / blocks;
        const std::size_t end = (i + 1) * spans.size() / blocks;
        medians.push_back(medianOf(spans.subspan(begin, end - begin)));
    }
    return medians;
}

/// Whether later values are greater by more than chance explains in one of a thousand series: the
/// one-sided test of H. B. Mann, Econometrica 13 (1945), with the normal approximation.
bool isRising(series values)
{
    int rises = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        for (std::size_t j = i + 1; j < values.size(); ++j)
            rises += (values[j] > values[i] ? 1 : 0) - (values[j] < values[i] ? 1 : 0);
    }
    const auto n = static_cast<double>(values.size());
    const double deviation = std::sqrt(n * (n - 1) * (2 * n + 5) / 18);
    const double limit = quantile(boost::math::normal(), 0.999);
    return deviation > 0 && (rises - 1) / deviation > limit;
}

std::optional<remark> trendRemark(series spans)
{
    const std::size_t half = spans.size() / 2;
    const double slower = medianOf(spans.last(half)) / medianOf(spans.first(half)) - 1;
    // Where half a percent is not reached, nobody cares how certain it is.
    if (!(slower > 0.005) || !isRising(blockMedians(spans)))
        return std::nullopt;
    return remark{remarkKind::trend,
                  QStringLiteral("the second half of the rounds is %1 slower than the first, as "
                                 "when a processor gets hot")
                      .arg(percent(slower))};
}

/// The official stopwatch counts its seconds in single precision, the coarser the longer the
/// program runs. What it counts in: the largest power of two that all spans are multiples of, in
/// seconds, if it is not far below a millisecond.
double officialStep(std::span<const roundSpan> rounds)
{
    const bool isCounting = std::any_of(rounds.begin(), rounds.end(), [](const roundSpan &round) {
        return round.official != 0.0F;
    });
    constexpr int coarsest = -7; // near the end of a day
    constexpr int finest = -13;
    for (int exponent = coarsest; isCounting && exponent >= finest; --exponent) {
        const double step = std::ldexp(1.0, exponent);
        if (std::all_of(rounds.begin(), rounds.end(), [step](const roundSpan &round) {
                return std::remainder(static_cast<double>(round.official), step) == 0.0;
            }))
            return step;
    }
    return 0;
}

/// Two readings of a clock of one millisecond are off by less than one together, and by one step of
/// their number each. Over many rounds the errors mostly cancel: each has a mean of 0 and a
/// standard deviation of half a millisecond at most, so eight of those of the sum leave room for
/// rounds that keep step with the clock; and it is never more than all errors of one sign. Clocks
/// that a time service slews may go one in a thousand apart.
double explainedDisagreement(std::span<const roundSpan> rounds, double total)
{
    const auto n = static_cast<double>(rounds.size());
    const double resolution = 0.001 + 2 * officialStep(rounds);
    return std::min(n, 1 + 4 * std::sqrt(n)) * resolution + 0.001 * total;
}

std::optional<remark> clockRemark(std::span<const roundSpan> rounds)
{
    double official = 0;
    double fine = 0;
    for (const roundSpan &round : rounds) {
        official += static_cast<double>(round.official);
        fine += fineSeconds(round);
    }
    if (!(std::abs(official - fine) > explainedDisagreement(rounds, fine)))
        return std::nullopt;
    return remark{remarkKind::clocksDisagree,
                  QStringLiteral("the rounds took %1 by the time of day, which results are made "
                                 "with, but %2 by the clock that is never set")
                      .arg(seconds(official), seconds(fine))};
}

std::optional<remark> suspensionRemark(std::span<const roundSpan> rounds)
{
    const std::vector<bool> suspended = suspendedRounds(rounds);
    const auto first = std::find(suspended.begin(), suspended.end(), true);
    if (first == suspended.end())
        return std::nullopt;
    const auto index = static_cast<std::size_t>(first - suspended.begin());
    const roundSpan &round = rounds[index];
    const auto count = std::count(first, suspended.end(), true);
    const QString others =
        count == 1 ? QString() : QStringLiteral(", and %1 more like it").arg(count - 1);
    return remark{remarkKind::suspended,
                  QStringLiteral("round %1 took %2%3: the machine slept, the program was halted or "
                                 "the clock was set; left out of the statistics, not of the result")
                      .arg(QString::number(index + 1),
                           seconds(fineSeconds(round) + std::max(0.0, aheadOfFine(round))),
                           others)};
}

} // namespace

std::vector<bool> suspendedRounds(std::span<const roundSpan> rounds)
{
    std::vector<double> spans;
    for (const roundSpan &round : rounds)
        spans.push_back(fineSeconds(round));
    std::vector<bool> suspended(rounds.size());
    if (spans.empty())
        return suspended;
    // The lower one of two in the middle: of two rounds one may be a suspended one.
    const auto middle = spans.begin() + std::ptrdiff_t((spans.size() - 1) / 2);
    std::nth_element(spans.begin(), middle, spans.end());
    const double limit = std::max(60.0, 100 * *middle);
    // Some systems' fine clock stands still while they sleep, and only the time of day goes on.
    for (std::size_t i = 0; i < rounds.size(); ++i)
        suspended[i] = fineSeconds(rounds[i]) > limit || aheadOfFine(rounds[i]) > limit;
    return suspended;
}

std::vector<double> countedSpans(std::span<const roundSpan> rounds)
{
    const std::vector<bool> suspended = suspendedRounds(rounds);
    std::vector<double> spans;
    for (std::size_t i = 0; i < rounds.size(); ++i) {
        if (!suspended[i])
            spans.push_back(fineSeconds(rounds[i]));
    }
    return spans;
}

std::vector<remark> remarksOn(std::span<const roundSpan> rounds)
{
    std::vector<remark> remarks;
    const auto add = [&remarks](const std::optional<remark> &found) {
        if (found)
            remarks.push_back(*found);
    };
    const std::vector<double> spans = countedSpans(rounds);
    if (spans.size() >= fewestRounds) {
        const std::size_t slow = slowFirst(spans);
        const series others = series(spans).subspan(slow);
        add(slowFirstRemark(spans, slow));
        add(outlierRemark(others));
        add(trendRemark(others));
    }
    add(clockRemark(rounds));
    add(suspensionRemark(rounds));
    return remarks;
}
