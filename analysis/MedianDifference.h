#pragma once

#include <QVector>

#include <limits>

/// By how much the median of one set of values exceeds that of another, in their unit.
struct MedianDifference
{
    double difference = 0.0;
    // The 95 % interval of the difference; NaN when there is none.
    double low = std::numeric_limits<double>::quiet_NaN();
    double high = low;

    [[nodiscard]] bool hasInterval() const { return low <= high; }
    /// Returns whether the interval shows that the second median is larger.
    [[nodiscard]] bool isSlower() const { return low > rounding; }
    /// Returns whether the interval shows that the second median is smaller.
    [[nodiscard]] bool isFaster() const { return high < -rounding; }

private:
    static constexpr double rounding = 1e-6; // far above that of doubles, far below a step
};

/// The number of resamplings from which the interval is computed.
constexpr int resamplings = 10000;

/// The smallest number of values in a set for which there is an interval. From fewer values,
/// resampling finds intervals that are too narrow.
constexpr int fewestForInterval = 5;

/// Compute the second median less the first, and its bootstrap interval: percentiles 2.5 and 97.5
/// of the differences of resampled medians, widened to at least a step on both sides, because
/// medians are multiples of a step. The same values always give the same interval. No set may be
/// empty.
MedianDifference compareMedians(QVector<double> first, QVector<double> second, double step);
