// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <optional>
#include <span>

/// Everything from @p lower to @p upper, both included.
struct interval {
    double lower = 0;
    double upper = 0;

    bool covers(double value) const { return lower <= value && value <= upper; }
};

/// What a series of values is like, in the unit of the values. All are 0 where there are none.
struct statistics {
    int count = 0;
    double mean = 0;
    double median = 0; ///< of an even number of values the mean of the two in the middle
    double minimum = 0;
    double maximum = 0;
    double standardDeviation = 0;       ///< of the sample, so over count - 1; 0 below two values
    double medianAbsoluteDeviation = 0; ///< the median distance from the median, unscaled
    /// Holds the median of what the values are drawn from with at least 95 %, whatever their
    /// distribution; absent below six values, which cannot be so sure.
    std::optional<interval> medianInterval;

    /// The standard deviation as a share of the mean; 0 where the mean is not positive.
    double spread() const { return mean > 0 ? standardDeviation / mean : 0; }
    /// An estimate of the standard deviation that a few wild values do not move: the median
    /// absolute deviation, scaled to what it is in a normal distribution.
    double robustDeviation() const { return 1.4826 * medianAbsoluteDeviation; }
};

/// The statistics of @p values, which are finite, in any order.
statistics statisticsOf(std::span<const double> values);

/// The median of @p values, which are finite, in any order; 0 if there are none.
double medianOf(std::span<const double> values);

/// The geometric mean; none without values or where one of them is not positive and finite.
std::optional<double> geometricMeanOf(std::span<const double> values);
