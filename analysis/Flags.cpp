#include "analysis/Flags.h"

#include "measurement/Record.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr double noHdmiEvent = -230.0; // what the video analyzer says without an event
// How far the source's edge lies from that of the last record, at most, as a share of the record:
// it is triggered, so only a slow or noisy rise moves it.
constexpr double sourceTolerance = 0.01;

/// Where delays lie that end at an end of the axis, in milliseconds.
struct AxisEnds
{
    AxisEnds(int samples, const Recognition &recognition)
    {
        constexpr double milliseconds = 1000.0;
        if (!recognition.type || samples < 2) {
            return;
        }
        const double halfSpan = recordSpan(*recognition.type) / 2;
        double source = recognition.instants.source;
        if (std::abs(source) >= halfSpan) {
            source = 0.0; // the last record has no source edge; then the trigger must do
        }
        tolerance = sourceTolerance * 2 * halfSpan * milliseconds;
        late = (sampleInstant(samples, samples, *recognition.type) - source) * milliseconds;
        early = (-halfSpan - source) * milliseconds;
    }

    [[nodiscard]] bool has(double delay) const
    {
        return std::abs(delay - late) <= tolerance || std::abs(delay - early) <= tolerance;
    }
    /// Only an RF edge counted from the start of the axis is further than its end.
    [[nodiscard]] bool isPast(double delay) const { return delay > late + tolerance; }

    double late = std::numeric_limits<double>::infinity();
    double early = -late;
    double tolerance = -1.0; // nothing lies at an unknown end
};

} // namespace

SeriesFlags flagDelays(const SeriesResults &results, int samples, const Recognition &recognition)
{
    const QVector<double> &toRf = results.sourceToRf.values;
    const QVector<double> &toHdmi = results.sourceToHdmi.values;
    const QVector<double> &toSink = results.sourceToSink.values;
    const AxisEnds ends(samples, recognition);
    const bool hdmiUsed = isHdmiUsed(results);

    SeriesFlags flags;
    for (QVector<Flags> &column : flags) {
        column.resize(toRf.size());
    }
    for (int i = 0; i < toRf.size(); ++i) {
        Flags &rf = flags[0][i];
        Flags &hdmi = flags[1][i];
        Flags &sink = flags[2][i];
        rf.setFlag(Flag::EndOfAxis, ends.has(toRf[i]));
        sink.setFlag(Flag::EndOfAxis, ends.has(toSink[i]));
        if (toRf[i] == 0.0 && toSink[i] == 0.0) {
            rf |= Flag::NothingArrived;
            sink |= Flag::NothingArrived;
        } else if (ends.isPast(toRf[i]) || (toRf[i] == 0.0 && toSink[i] < 0.0)) {
            rf |= Flag::NoSource;
            sink |= Flag::NoSource;
        } else if (toRf[i] == 0.0) {
            rf |= Flag::OnTrigger;
        }
        if (i > 0 && toRf[i] == toRf[i - 1] && toSink[i] == toSink[i - 1]) {
            rf |= Flag::Repeated;
            sink |= Flag::Repeated;
        }
        hdmi.setFlag(Flag::NoHdmiValue, hdmiUsed && toHdmi[i] == 0.0);
        hdmi.setFlag(Flag::NoHdmiEvent, toHdmi[i] == noHdmiEvent);
        for (const DelayKind kind : delayKinds) {
            flags[static_cast<std::size_t>(kind)][i].setFlag(
                Flag::NotFinite, !std::isfinite(valuesOf(results, kind)[i]));
        }
    }
    return flags;
}

bool isHdmiUsed(const SeriesResults &results)
{
    const QVector<double> &values = results.sourceToHdmi.values;
    return std::any_of(values.begin(), values.end(), [](double value) { return value != 0.0; });
}

bool isMeasured(const SeriesResults &results, DelayKind kind)
{
    return kind != DelayKind::Hdmi || isHdmiUsed(results);
}

QVector<Flag> allFlags()
{
    return {Flag::EndOfAxis, Flag::NoSource,    Flag::NothingArrived, Flag::OnTrigger,
            Flag::Repeated,  Flag::NoHdmiValue, Flag::NoHdmiEvent,    Flag::NotFinite};
}

QString flagReason(Flag flag)
{
    switch (flag) {
    case Flag::EndOfAxis:
        return "no edge: the delay lies at the end of the time axis";
    case Flag::NoSource:
        return "no source edge: the delay counts from an end of the time axis";
    case Flag::NothingArrived:
        return "nothing arrived: both delays are 0, as with empty traces";
    case Flag::OnTrigger:
        return "no delay: 0 is written when the RF edge lies on the trigger itself";
    case Flag::Repeated:
        return "nothing new arrived: RF and sink are those of the measurement before";
    case Flag::NoHdmiValue:
        return "no value from the video analyzer";
    case Flag::NoHdmiEvent:
        return "no event at the video analyzer (-230)";
    case Flag::NotFinite:
        break;
    }
    return "not a finite number, left out of all statistics";
}

QString flagReasons(Flags flags)
{
    QStringList reasons;
    for (const Flag flag : allFlags()) {
        if (flags.testFlag(flag)) {
            reasons += flagReason(flag);
        }
    }
    return reasons.join("; ");
}
