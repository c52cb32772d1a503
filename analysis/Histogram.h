#pragma once

#include <QVector>

/// Bins of equal width, one after the other.
struct Bins
{
    double start = 0.0;
    double width = 0.0;
    int count = 0;
};

/// Choose bins for values in any order. Their width is a multiple of the values' interval (that of
/// sampling, in the values' unit), and no value lies on an edge: else bins hold more possible
/// values and less by turns, and a comb appears. With an interval of 0 the least distance of two
/// values stands in for it.
Bins chooseBins(QVector<double> values, double interval);

/// Count the values in each bin; those outside all bins are not counted.
QVector<int> countValues(const QVector<double> &values, const Bins &bins);
