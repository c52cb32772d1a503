#include "analysis/Histogram.h"

#include "analysis/Statistics.h"

#include <algorithm>
#include <cmath>

namespace {

/// Returns the bin width that suits values in ascending order.
double suitableWidth(const QVector<double> &sorted)
{
    // Freedman and Diaconis, On the histogram as a density estimator, 1981.
    const double width = 2.0 * (nearestRank(sorted, 750) - nearestRank(sorted, 250)) /
                         std::cbrt(static_cast<double>(sorted.size()));
    // Two humps a video frame apart have a large interquartile range; wide bins would join them.
    constexpr int few = 1000;
    constexpr double widestForFew = 1.0; // ms
    return sorted.size() < few ? std::min(width, widestForFew) : width;
}

} // namespace

Bins chooseBins(const QVector<QVector<double>> &series, double step, double from, double to)
{
    constexpr double mostBins = 500.0;
    double wanted = to - from;
    bool isEmpty = true;
    for (QVector<double> values : series) {
        if (!values.isEmpty()) {
            std::sort(values.begin(), values.end());
            wanted = std::min(wanted, suitableWidth(values));
            isEmpty = false;
        }
    }
    if (isEmpty) {
        return {};
    }
    const double least = (to - from) / (mostBins - 1.0);
    double width = step;
    double next = 2.0 * step;
    for (int i = 1; width < least || next <= wanted; ++i) {
        width = next;
        next *= i % 3 == 1 ? 2.5 : 2.0;
    }
    const double start = (std::round(from / step) - 0.5) * step;
    const double count = std::floor((to - start) / width) + 1.0;
    return {start, width, static_cast<int>(qBound(1.0, count, mostBins + 1.0))};
}

QVector<int> countValues(const QVector<double> &values, const Bins &bins)
{
    QVector<int> counts(bins.count + 2);
    for (const double value : values) {
        const double bin = std::floor((value - bins.start) / bins.width);
        ++counts[static_cast<int>(qBound(-1.0, bin, static_cast<double>(bins.count))) + 1];
    }
    return counts;
}
