#include "measurement/DelayComputation.h"

namespace {

constexpr double sourceRise = 0.035; // volts above the record's first sample
constexpr double rfLevel = 0.05;     // of the envelope's 0 .. 0.2
constexpr int rfRunLength = 8;       // samples: a Wi-Fi beacon has fewer in usual records
constexpr double sinkLevel = 0.06;   // volts
constexpr double millisecondsPerSecond = 1000.0;

int sourceEdge(int n, const QVector<double> &source)
{
    const int samples = qMin(n, source.size());
    for (int i = 0; i < samples; ++i) {
        if (source[i] - source[0] > sourceRise) {
            return i;
        }
    }
    return qMax(n, 0);
}

/// The run may end after index n - 1, if the trace has samples there.
int rfEdge(int n, const QVector<double> &rf, int start)
{
    int run = 0;
    for (int i = start; i < rf.size() && i - run < n; ++i) {
        run = rf[i] > rfLevel ? run + 1 : 0;
        if (run == rfRunLength) {
            return i + 1 - rfRunLength;
        }
    }
    return qMax(n, start);
}

int sinkEdge(int n, const QVector<double> &sink)
{
    const int samples = qMin(n, sink.size());
    for (int i = 0; i < samples; ++i) {
        if (sink[i] >= sinkLevel) {
            return i;
        }
    }
    return qMax(n, 0);
}

} // namespace

Delays computeDelays(int n, const QVector<double> &source, const QVector<double> &rf,
                     const QVector<double> &sink, const QVector<double> &time,
                     OscilloscopeType type)
{
    const auto instant = [&](int index) {
        return index < time.size() ? time[index] : sampleInstant(index, n, type);
    };

    const int s = sourceEdge(n, source);
    const Instants at = {instant(s), sampleInstant(rfEdge(n, rf, s), n, type),
                         instant(sinkEdge(n, sink))};
    // An RF instant exactly on the trigger gives the delay 0.
    const double sourceToRf = at.rf == 0.0 ? 0.0 : (at.rf - at.source) * millisecondsPerSecond;
    return {at, sourceToRf, (at.sink - at.source) * millisecondsPerSecond};
}
