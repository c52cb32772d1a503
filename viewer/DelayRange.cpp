#include "viewer/DelayRange.h"

#include "analysis/Statistics.h"

#include <algorithm>
#include <cmath>

namespace {

QwtInterval usualRange(QVector<double> values, double step)
{
    if (values.isEmpty()) {
        return {};
    }
    const Statistics of = computeStatistics(values);
    std::sort(values.begin(), values.end());
    const double first = nearestRank(values, 250);
    const double third = nearestRank(values, 750);
    constexpr double leastStep = 0.1; // ms: where half of the values are equal and no step is known
    constexpr double farAway = 5.0;   // interquartile ranges
    const double far = farAway * std::max(third - first, step > 0.0 ? step : leastStep);
    const double from = std::fmin(first - far, of.p5);
    const double to = std::fmax(third + far, of.p95);
    return {*std::lower_bound(values.begin(), values.end(), from),
            *(std::upper_bound(values.begin(), values.end(), to) - 1)};
}

} // namespace

QwtInterval delayRange(const QVector<Series> &selection, DelayKind kind)
{
    for (const bool withFlagged : {false, true}) {
        QwtInterval range;
        for (const Series &series : selection) {
            range |= usualRange(selectValues(series, kind, withFlagged), delayStep(series, kind));
        }
        if (range.isValid() && std::isfinite(range.width())) {
            return range;
        }
    }
    return {0.0, 1.0};
}

QwtInterval withAir(const QwtInterval &range)
{
    constexpr double air = 0.12;
    const double margin = std::max(range.width() * air, 1e-3 * std::abs(range.maxValue()) + 1e-9);
    return {range.minValue() - margin, range.maxValue() + margin};
}

double delayStep(const Series &series, DelayKind kind)
{
    return kind == SourceToHdmi ? 0.0 : samplingInterval(series);
}
