#include "analysis/Histogram.h"

#include "analysis/Statistics.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double mostBins = 200.0;

double leastDistance(const QVector<double> &sorted)
{
    double least = 0.0;
    for (int i = 1; i < sorted.size(); ++i) {
        const double distance = sorted[i] - sorted[i - 1];
        if (distance > 0.0 && (least == 0.0 || distance < least)) {
            least = distance;
        }
    }
    return least;
}

} // namespace

Bins chooseBins(QVector<double> values, double interval)
{
    if (values.isEmpty()) {
        return {};
    }
    std::sort(values.begin(), values.end());
    const double range = values.last() - values.first();
    const double unit = interval > 0.0 ? interval : leastDistance(values);
    if (!std::isfinite(range)) {
        return {};
    }
    if (!(unit > 0.0)) {
        return {values.first() - 0.5, 1.0, 1};
    }
    // Freedman and Diaconis, On the histogram as a density estimator, 1981.
    const double wanted = 2.0 * (nearestRank(values, 750) - nearestRank(values, 250)) /
                          std::cbrt(static_cast<double>(values.size()));
    const double least = std::max(1.0, std::ceil(range / unit / (mostBins - 1.0)));
    const double width = unit * std::max(least, std::round(wanted / unit));
    const double start = (std::round(values.first() / unit) - 0.5) * unit;
    const double count = std::floor((values.last() - start) / width) + 1.0;
    return {start, width, static_cast<int>(qBound(1.0, count, mostBins + 1.0))};
}

QVector<int> countValues(const QVector<double> &values, const Bins &bins)
{
    QVector<int> counts(bins.count);
    for (const double value : values) {
        const double bin = std::floor((value - bins.start) / bins.width);
        if (bin >= 0.0 && bin < bins.count) {
            ++counts[static_cast<int>(bin)];
        }
    }
    return counts;
}
