#include "measurement/TimeAxis.h"

#include "measurement/VectorCapacity.h"

#include <new>

double sampleInstant(int index, int samples, int oscilloscopeType)
{
    const double last = static_cast<double>(samples) - 1.0;
    return oscilloscopeType == 0 ? index / last - 0.5 : 1.2 * index / last - 0.6;
}

void appendTimeAxis(int samples, int oscilloscopeType, QVector<double> *axes)
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
        axis[k] = sampleInstant(k, samples, oscilloscopeType);
    }
}
