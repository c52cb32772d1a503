#include "measurement/Record.h"

#include <algorithm>
#include <array>
#include <new>

namespace {

double instantIn(double span, int index, int samples)
{
    return span * index / (static_cast<double>(samples) - 1.0) - span / 2;
}

} // namespace

double sampleInstant(int index, int samples, OscilloscopeType type)
{
    return instantIn(recordSpan(type), index, samples);
}

void appendTimeAxis(int samples, OscilloscopeType type, QVector<double> *axes)
{
    const int first = axes->size();
    const int count = qBound(0, samples, maxVectorSize - first);
    try {
        axes->resize(first + count);
    } catch (const std::bad_alloc &) {
        return; // the series goes on without another axis
    }
    const double span = recordSpan(type); // once: the loop is twice as fast
    double *axis = axes->data() + first;
    for (int k = 0; k < count; ++k) {
        axis[k] = instantIn(span, k, samples);
    }
}

void normaliseEnvelope(QVector<double> *rf)
{
    constexpr double span = 0.2;
    constexpr int lanes = 8; // independent extremes, which the processor compares at the same time
    std::array<double, lanes> minima{};
    std::array<double, lanes> maxima{};
    minima.fill(std::numeric_limits<double>::infinity());
    maxima.fill(-std::numeric_limits<double>::infinity());
    const double *x = rf->constData();
    int i = 0;
    for (; i + lanes <= rf->size(); i += lanes) {
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            const double sample = x[i + static_cast<int>(lane)];
            minima[lane] = sample < minima[lane] ? sample : minima[lane];
            maxima[lane] = sample > maxima[lane] ? sample : maxima[lane];
        }
    }
    for (; i < rf->size(); ++i) {
        minima[0] = x[i] < minima[0] ? x[i] : minima[0];
        maxima[0] = x[i] > maxima[0] ? x[i] : maxima[0];
    }
    double minimum = minima[0];
    double maximum = maxima[0];
    for (std::size_t lane = 1; lane < lanes; ++lane) {
        minimum = minima[lane] < minimum ? minima[lane] : minimum;
        maximum = maxima[lane] > maximum ? maxima[lane] : maximum;
    }
    if (minimum == 0.0) { // 0 and -0 are equal: take the first
        minimum = *std::find(rf->constBegin(), rf->constEnd(), minimum);
    }
    const double scale = span / (maximum - minimum);
    for (double &sample : *rf) {
        sample = (sample - minimum) * scale;
    }
}
