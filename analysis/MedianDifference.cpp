#include "analysis/MedianDifference.h"

#include "analysis/Statistics.h"

#include <algorithm>
#include <random>

namespace {

/// Returns the median (by nearest rank) of one resampling, which draws as many values as there are,
/// with replacement. Only its median is drawn: the k-th smallest of n uniform numbers has the
/// distribution Beta(k, n + 1 - k), and so has the share of one gamma variate in the sum of two.
double resampledMedian(const QVector<double> &sorted, std::mt19937 *random)
{
    const int n = sorted.size();
    const int k = (n + 1) / 2;
    const double below = std::gamma_distribution<>(k)(*random);
    const double above = std::gamma_distribution<>(n + 1 - k)(*random);
    return sorted[qMin(static_cast<int>(n * (below / (below + above))), n - 1)];
}

} // namespace

MedianDifference compareMedians(QVector<double> first, QVector<double> second, double step)
{
    std::sort(first.begin(), first.end());
    std::sort(second.begin(), second.end());
    MedianDifference found;
    found.difference = nearestRank(second, 500) - nearestRank(first, 500);
    if (qMin(first.size(), second.size()) < fewestForInterval) {
        return found;
    }
    std::mt19937 random; // NOLINT(cert-msc32-c,cert-msc51-cpp): always the same numbers
    QVector<double> differences(resamplings);
    for (double &difference : differences) {
        const double median = resampledMedian(first, &random);
        difference = resampledMedian(second, &random) - median;
    }
    std::sort(differences.begin(), differences.end());
    found.low = qMin(nearestRank(differences, 25), found.difference - step);
    found.high = qMax(nearestRank(differences, 975), found.difference + step);
    return found;
}
