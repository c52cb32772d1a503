#include "analysis/Statistics.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

/// The lag-1 correlation; NaN where all values are equal.
double correlationOf(const QVector<double> &values, double mean)
{
    double products = 0.0;
    double squares = 0.0;
    bool areEqual = true; // rounding of the mean must not make them differ
    for (int i = 0; i < values.size(); ++i) {
        squares += (values[i] - mean) * (values[i] - mean);
        if (i > 0) {
            products += (values[i] - mean) * (values[i - 1] - mean);
            areEqual = areEqual && values[i] == values[0];
        }
    }
    return areEqual ? Statistics::none : products / squares;
}

} // namespace

Statistics computeStatistics(QVector<double> values)
{
    Statistics found;
    found.n = values.size();
    if (values.isEmpty()) {
        return found;
    }
    found.mean = std::accumulate(values.begin(), values.end(), 0.0) / found.n;
    if (found.n >= 5) {
        found.correlation = correlationOf(values, found.mean);
    }
    std::sort(values.begin(), values.end());
    found.minimum = values.first();
    found.maximum = values.last();
    found.median = nearestRank(values, 500);
    if (found.n >= 2) {
        const double squares = std::accumulate(values.begin(), values.end(), 0.0,
                                               [mean = found.mean](double sum, double value) {
                                                   return sum + (value - mean) * (value - mean);
                                               });
        found.deviation = std::sqrt(squares / (found.n - 1));
    }
    if (found.n >= 20) {
        found.p5 = nearestRank(values, 50);
        found.p95 = nearestRank(values, 950);
    }
    if (found.n >= 100) {
        found.p99 = nearestRank(values, 990);
    }
    return found;
}

double nearestRank(const QVector<double> &sorted, int perMille)
{
    const qint64 rank = (qint64{sorted.size()} * perMille + 999) / 1000; // rounded up
    return sorted[qBound(0, static_cast<int>(rank) - 1, sorted.size() - 1)];
}
