#include "viewer/TraceData.h"

#include <algorithm>
#include <cmath>
#include <limits>

TraceData::TraceData(const QVector<double> &samples, double start, double step, int most)
    : trace(samples), first(start), interval(step), columns(most)
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
    if (from == shownFrom && to == shownTo) {
        return;
    }
    shownFrom = from;
    shownTo = to;
    shown.clear();
    constexpr double largest = std::numeric_limits<double>::max();
    const double *samples = trace.constData();
    const int step = std::max(1, (to - from + columns - 1) / columns);
    for (int column = from; column < to; column += step) {
        const int end = std::min(to, column + step);
        int leastAt = -1;
        int greatestAt = -1;
        double least = std::numeric_limits<double>::infinity();
        double greatest = -least;
        for (int i = column; i < end; ++i) {
            const double sample = samples[i];
            if (sample < least && sample >= -largest) {
                least = sample;
                leastAt = i;
            }
            if (sample > greatest && sample <= largest) {
                greatest = sample;
                greatestAt = i;
            }
        }
        if (leastAt < 0) {
            continue;
        }
        for (const int i : {std::min(leastAt, greatestAt), std::max(leastAt, greatestAt)}) {
            shown += QPointF(first + interval * i, samples[i]);
        }
        if (leastAt == greatestAt) {
            shown.removeLast();
        }
    }
}
