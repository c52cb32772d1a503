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

using Limits = std::numeric_limits<double>;
constexpr std::array<double, 14> values = {0.0,
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
                                           Limits::quiet_NaN(),
                                           Limits::infinity(),
                                           -Limits::infinity()};

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

/// The first index from `start` on at which something holds, below n and the trace's end.
template <typename Predicate>
int firstIndex(int n, const QVector<double> &trace, int start, const Predicate &holds)
{
    for (int i = start; i < std::min(n, trace.size()); ++i) {
        if (holds(i)) {
            return i;
        }
    }
    return std::max(n, start);
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

    const int s = firstIndex(n, source, 0, [&](int i) { return source[i] - source[0] > 0.035; });
    const int r = firstIndex(n, rf, s, [&](int i) {
        const QVector<double> eight = rf.mid(i, 8);
        return eight.size() == 8 &&
               std::all_of(eight.begin(), eight.end(), [](double x) { return x > 0.05; });
    });
    const int k = firstIndex(n, sink, 0, [&](int i) { return sink[i] >= 0.06; });
    const double sourceInstant = s < time.size() ? time[s] : onAxis(s, n, type);
    const double rfInstant = onAxis(r, n, type);
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
