#include "measurement/TimeAxis.h"

#include "measurement/VectorCapacity.h"

#include <new>

double sampleInstant(int index, int samples, OscilloscopeType type)
{
    const double last = static_cast<double>(samples) - 1.0;
    const double span = recordSpan(type);
    return span * index / last - span / 2;
}

void appendTimeAxis(int samples, OscilloscopeType type, QVector<double> *axes)
{
    const int first = axes->size();
    const int count = qBound(0, samples, maxVectorSize - first);
    try {
        axes->resize(first + count);
    } catch (const std::bad_alloc &) {
        return; // the series is worth more than another axis
    }
    double *axis = axes->data() + first;
    for (int k = 0; k < count; ++k) {
        axis[k] = sampleInstant(k, samples, type);
    }
}
