#pragma once

#include <QVector>

/// Bins of equal width, one after the other.
struct Bins
{
    double start = 0.0;
    double width = 1.0;
    int count = 0;

    /// Returns where a bin begins and the one before it ends.
    [[nodiscard]] double edge(int bin) const { return start + bin * width; }
};

/// Choose bins that cover the values between `from` and `to`, for one or more series in any order.
/// Wide bins hide how series differ, so the width suits the narrowest series. It is 1, 2, 5, 10, 20
/// and so on times the step, which is the least difference between two values. The edges lie
/// between possible values: otherwise some bins would hold more possible values than others, and
/// the histogram would look like a comb. Without values there are no bins.
Bins chooseBins(const QVector<QVector<double>> &series, double step, double from, double to);

/// Count the values. Returns the number below all bins, one number for each bin, and the number
/// above all bins.
QVector<int> countValues(const QVector<double> &values, const Bins &bins);
