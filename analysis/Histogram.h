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

/// Choose bins from one value to another for one or more series in any order. Their width suits the
/// narrowest of the series: bins that suit all values together would hide how series differ. It is
/// 1, 2 or 5 times a power of ten of the values' step (their least difference, ms), and no value
/// lies on an edge. Else some bins would hold more possible values than others, and a comb appear.
Bins chooseBins(const QVector<QVector<double>> &series, double step, double from, double to);

/// Count the values below all bins, in each bin, and above all bins.
QVector<int> countValues(const QVector<double> &values, const Bins &bins);
