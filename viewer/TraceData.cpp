#include "viewer/TraceData.h"

#include <algorithm>
#include <cmath>

TraceData::TraceData(const QVector<double> &trace, double first, double interval, int columns)
    : trace(trace), first(first), interval(interval), columns(columns)
{
    show(0, trace.size());
    bounds = qwtBoundingRect(*this);
}

void TraceData::setRectOfInterest(const QRectF &rect)
{
    // One sample more on either side, for the lines that lead out of the plot.
    const auto index = [this](double instant, int beside) {
        const double position = std::floor((instant - first) / interval) + beside;
        return static_cast<int>(qBound(0.0, position, static_cast<double>(trace.size())));
    };
    show(index(rect.left(), 0), index(rect.right(), 2));
}

void TraceData::show(int from, int to)
{
    shown.clear();
    const double *samples = trace.constData();
    const int width = std::max(1, (to - from + columns - 1) / columns); // samples in a column
    for (int start = from; start < to; start += width) {
        const int end = std::min(to, start + width);
        int least = -1;
        int greatest = -1;
        for (int i = start; i < end; ++i) {
            if (std::isfinite(samples[i])) {
                least = least < 0 || samples[i] < samples[least] ? i : least;
                greatest = greatest < 0 || samples[i] > samples[greatest] ? i : greatest;
            }
        }
        if (least < 0) {
            continue;
        }
        const auto [earlier, later] = std::minmax(least, greatest);
        shown += QPointF(first + interval * earlier, samples[earlier]);
        if (later != earlier) {
            shown += QPointF(first + interval * later, samples[later]);
        }
    }
}
