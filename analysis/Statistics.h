#pragma once

#include <QVector>

#include <limits>

/// Statistics of a delay, in milliseconds except for the correlation; NaN when there are too few
/// values. Median and percentiles are by nearest rank, so each of them is one of the values.
struct Statistics
{
    static constexpr double none = std::numeric_limits<double>::quiet_NaN();

    int n = 0;
    double minimum = none;
    double median = none;
    double mean = none;
    double maximum = none;
    double deviation = none;   ///< standard deviation of the population, estimated with n - 1
    double p5 = none;          ///< from 20 values on
    double p95 = none;         ///< from 20 values on
    double p99 = none;         ///< from 100 values on
    double correlation = none; ///< of each value with the one before, from 5 values, not all equal

    [[nodiscard]] double peakToPeak() const { return maximum - minimum; }
};

/// Compute the statistics of finite values in the order of measurement.
Statistics computeStatistics(const QVector<double> &values);

/// Returns a percentile, given in thousandths (500 for the median), of values in ascending order:
/// the smallest value v for which at least this share of the values is v or less. There must be a
/// value.
double nearestRank(const QVector<double> &sorted, int perMille);
