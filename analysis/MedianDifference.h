#pragma once

#include <QVector>

#include <limits>

/// By how much the median of one set of values exceeds that of another, in their unit.
struct MedianDifference
{
    double difference = 0.0;
    double low =
        std::numeric_limits<double>::quiet_NaN(); ///< of the 95 % interval, if there is one
    double high = low;

    [[nodiscard]] bool hasInterval() const { return low <= high; }
    /// Whether the interval shows that the second set is larger, or smaller.
    [[nodiscard]] bool isSlower() const { return low > rounding; }
    [[nodiscard]] bool isFaster() const { return high < -rounding; }

private:
    static constexpr double rounding = 1e-6; // far above that of doubles, far below a step
};

/// How often the values are drawn anew for the interval.
constexpr int resamplings = 10000;

/// How many values there must be on both sides: of fewer, resampling tells too little.
constexpr int fewestForInterval = 5;

/// Compute the second median less the first, and its bootstrap interval: percentiles 2.5 and 97.5
/// of the differences of resampled medians, widened to at least a step on both sides, because
/// medians are multiples of a step. Equal values give an equal interval. Both sets must have one.
MedianDifference compareMedians(QVector<double> first, QVector<double> second, double step);
