// The delay computation over records of any length and content, held against the same rules
// written down once more, as plainly as they can be.
//
// Input: n and an index (4 bytes each), the oscilloscope's type (1 byte), then source, RF, sink
// and time axis. Each is a number of runs (1 byte) and the runs: a byte whose upper half tells how
// often the value comes and whose lower half which of the values below it is; past them it is 8
// bytes of its own.

#include "Fuzzing.h"
#include "measurement/DelayComputation.h"
#include "measurement/Globals.h"
#include "measurement/TimeAxis.h"

#include <QVector>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr std::array<double, 14> values{
    0.0,
    0.01,
    0.035,
    0.0350000001,
    0.05,
    0.0500000001,
    0.06,
    0.0599999999,
    0.2,
    -0.04,
    1e308,
    std::numeric_limits<double>::quiet_NaN(),
    std::numeric_limits<double>::infinity(),
    -std::numeric_limits<double>::infinity(),
};

QVector<double> takeTrace(Input *input)
{
    QVector<double> trace;
    const int runs = input->take<std::uint8_t>();
    for (int i = 0; i < runs && !input->isEmpty(); ++i) {
        const unsigned run = input->take<std::uint8_t>();
        const unsigned which = run & 0x0FU;
        const double value = which < values.size() ? values[which] : input->take<double>();
        trace += QVector<double>(static_cast<int>(run >> 4U) + 1, value);
    }
    return trace;
}

/// A sample, or one that qualifies for nothing where the trace has none.
double sampleAt(const QVector<double> &trace, int index)
{
    return index < trace.size() ? trace[index] : std::numeric_limits<double>::quiet_NaN();
}

/// The index from which on no sample is looked at.
int endOf(int n, const QVector<double> &trace)
{
    return std::min(n, trace.size());
}

int firstRise(int n, const QVector<double> &source)
{
    int i = 0;
    while (i < endOf(n, source) && !(source[i] - source[0] > 0.035)) {
        ++i;
    }
    return i < endOf(n, source) ? i : std::max(n, 0);
}

int firstBurst(int n, const QVector<double> &rf, int start)
{
    for (int r = start; r < endOf(n, rf); ++r) {
        int on = 0;
        while (on < 8 && sampleAt(rf, r + on) > 0.05) {
            ++on;
        }
        if (on == 8) {
            return r;
        }
    }
    return std::max(n, start);
}

int firstLight(int n, const QVector<double> &sink)
{
    for (int k = 0; k < endOf(n, sink); ++k) {
        if (sink[k] >= 0.06) {
            return k;
        }
    }
    return std::max(n, 0);
}

double onAxis(int index, int n, int type)
{
    const double last = double{1} * n - 1;
    return type == 0 ? index / last - 0.5 : 1.2 * index / last - 0.6;
}

bool isSameNumber(double a, double b)
{
    return a == b || (std::isnan(a) && std::isnan(b));
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    Input input(data, size);
    const int n = input.take<std::int32_t>();
    const int index = input.take<std::int32_t>();
    const int type = input.take<std::uint8_t>();
    const QVector<double> source = takeTrace(&input);
    const QVector<double> rf = takeTrace(&input);
    const QVector<double> sink = takeTrace(&input);
    const QVector<double> time = takeTrace(&input);

    const Delays delays = computeDelays(n, source, rf, sink, time, type);

    const int s = firstRise(n, source);
    const int k = firstLight(n, sink);
    const double sourceInstant = s < time.size() ? time[s] : onAxis(s, n, type);
    const double rfInstant = onAxis(firstBurst(n, rf, s), n, type);
    const double sinkInstant = k < time.size() ? time[k] : onAxis(k, n, type);
    require(isSameNumber(delays.sourceInstant, sourceInstant), "the source instant");
    require(isSameNumber(delays.rfInstant, rfInstant), "the RF instant");
    require(isSameNumber(delays.sinkInstant, sinkInstant), "the sink instant");
    require(isSameNumber(delays.sourceToRf,
                         rfInstant == 0.0 ? 0.0 : (rfInstant - sourceInstant) * 1000.0),
            "the delay to RF");
    require(isSameNumber(delays.sourceToSink, (sinkInstant - sourceInstant) * 1000.0),
            "the delay to the sink");
    require(n == 1 || std::isfinite(delays.rfInstant), "an RF instant is on the axis");

    publishInstants(delays);
    require(isSameNumber(t_src, sourceInstant) && isSameNumber(t_rf, rfInstant) &&
                isSameNumber(t_snk, sinkInstant),
            "the graph gets the instants");

    require(n == 1 || std::isfinite(sampleInstant(index, n, type)), "every index has its instant");
    return 0;
}
