// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/statistics.h"

#include <boost/math/distributions/binomial.hpp>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

namespace
{

double medianOfSorted(const std::vector<double> &sorted)
{
    if (sorted.empty())
        return 0;
    const std::size_t upper = sorted.size() / 2;
    const std::size_t lower = (sorted.size() - 1) / 2;
    return std::midpoint(sorted[lower], sorted[upper]);
}

std::vector<double> sortedCopy(std::span<const double> values)
{
    std::vector<double> sorted(values.begin(), values.end());
    std::sort(sorted.begin(), sorted.end());
    return sorted;
}

double meanOf(std::span<const double> values)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / static_cast<double>(values.size());
}

double standardDeviationOf(std::span<const double> values, double mean)
{
    if (values.size() < 2)
        return 0;
    double squares = 0;
    for (const double value : values)
        squares += (value - mean) * (value - mean);
    return std::sqrt(squares / static_cast<double>(values.size() - 1));
}

/// How many values lie below the median follows the binomial distribution with 1/2, whatever the
/// values are drawn from. So as many values are left out on each side as leave less than 2.5 % to
/// that side. H. A. David, H. N. Nagaraja, Order Statistics, 3rd edition, section 7.1.
std::optional<interval> medianIntervalOf(const std::vector<double> &sorted)
{
    constexpr double oneSide = 0.025;
    if (sorted.empty())
        return std::nullopt;
    const boost::math::binomial below(static_cast<double>(sorted.size()), 0.5);
    const double leftOut = std::floor(quantile(below, oneSide)); // rounded outwards: downwards
    if (cdf(below, leftOut) > oneSide)
        return std::nullopt;
    const auto index = static_cast<std::size_t>(leftOut);
    return interval{sorted[index], sorted[sorted.size() - 1 - index]};
}

} // namespace

statistics statisticsOf(std::span<const double> values)
{
    statistics result;
    if (values.empty())
        return result;
    const std::vector<double> sorted = sortedCopy(values);
    result.count = static_cast<int>(sorted.size());
    result.mean = meanOf(values);
    result.median = medianOfSorted(sorted);
    result.minimum = sorted.front();
    result.maximum = sorted.back();
    result.standardDeviation = standardDeviationOf(values, result.mean);
    std::vector<double> distances;
    distances.reserve(sorted.size());
    for (const double value : sorted)
        distances.push_back(std::abs(value - result.median));
    result.medianAbsoluteDeviation = medianOf(distances);
    result.medianInterval = medianIntervalOf(sorted);
    return result;
}

double medianOf(std::span<const double> values)
{
    return medianOfSorted(sortedCopy(values));
}

std::optional<double> geometricMeanOf(std::span<const double> values)
{
    if (values.empty())
        return std::nullopt;
    double logarithms = 0;
    for (const double value : values) {
        if (!(value > 0) || !std::isfinite(value))
            return std::nullopt;
        logarithms += std::log(value);
    }
    return std::exp(logarithms / static_cast<double>(values.size()));
}
