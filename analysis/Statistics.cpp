#include "analysis/Statistics.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

Statistics computeStatistics(const QVector<double> &values)
{
    Statistics found;
    found.n = values.size();
    if (values.isEmpty()) {
        return found;
    }
    QVector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    found.minimum = sorted.first();
    found.maximum = sorted.last();
    found.median = nearestRank(sorted, 500);
    found.mean = std::accumulate(sorted.begin(), sorted.end(), 0.0) / found.n;
    const auto product = [mean = found.mean](double a, double b) {
        return (a - mean) * (b - mean);
    };
    const auto sum = [&](const double *first, const double *second, const double *end) {
        return std::inner_product(first, end, second, 0.0, std::plus<>(), product);
    };
    const double squares = sum(values.begin(), values.begin(), values.end());
    if (found.n >= 2) {
        found.deviation = std::sqrt(squares / (found.n - 1));
    }
    // When all values are equal, squares may hold what the rounding of the mean leaves.
    if (found.n >= 5 && found.maximum > found.minimum) {
        found.correlation = sum(values.begin() + 1, values.begin(), values.end()) / squares;
    }
    if (found.n >= 20) {
        found.p5 = nearestRank(sorted, 50);
        found.p95 = nearestRank(sorted, 950);
    }
    if (found.n >= 100) {
        found.p99 = nearestRank(sorted, 990);
    }
    return found;
}

double nearestRank(const QVector<double> &sorted, int perMille)
{
    const qint64 rank = (qint64{sorted.size()} * perMille + 999) / 1000; // rounded up
    return sorted[qBound(0, static_cast<int>(rank) - 1, sorted.size() - 1)];
}
