#include "plot/TraceData.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int columns = 4096; // as many as a wide screen has, and enough for paper

} // namespace

TraceData::TraceData(const QVector<double> &samples, double start, double step)
    : trace(samples), first(start), interval(step)
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
    const int step = std::max(1, (to - from + columns - 1) / columns);
    for (int column = from; column < to; column += step) {
        int least = -1;
        int greatest = -1;
        for (int i = column; i < std::min(to, column + step); ++i) {
            if (std::isfinite(trace.constData()[i])) {
                least = least < 0 || trace[i] < trace[least] ? i : least;
                greatest = greatest < 0 || trace[i] > trace[greatest] ? i : greatest;
            }
        }
        for (const int i : {std::min(least, greatest), std::max(least, greatest)}) {
            if (i >= 0 && (shown.isEmpty() || shown.last().x() != first + interval * i)) {
                shown += QPointF(first + interval * i, trace[i]);
            }
        }
    }
}
