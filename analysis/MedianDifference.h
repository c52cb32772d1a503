#pragma once

#include <QVector>

/// By how much the median of one set of values exceeds that of another, in their unit.
struct MedianDifference
{
    double difference = 0.0;
    double low = 0.0; ///< of the interval of 95 %
    double high = 0.0;
};

/// How often the values are drawn anew for the interval.
constexpr int resamplings = 10000;

/// Compute the difference of the medians, second less first, and its bootstrap interval (the
/// percentiles 2.5 and 97.5 of the differences between resampled medians). The same values always
/// give the same interval. Both must hold a value.
MedianDifference compareMedians(QVector<double> first, QVector<double> second);
