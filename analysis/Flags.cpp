#include "analysis/Flags.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr double noHdmiEvent = -230.0; // the video analyzer's value when there was no event

/// The time axis of a record, in milliseconds from the trigger. It goes from -end to end.
struct Axis
{
    double end;
    double source; ///< instant of the source edge in the last record

    /// How far the source edges of other records may lie from that of the last one. The trigger
    /// holds them together, so only a slow or noisy rise moves them. This also covers the one
    /// sample by which a missing edge lies beyond the end.
    [[nodiscard]] double tolerance() const { return 0.02 * end; }
    /// Returns whether a delay leads from the source edge to either end of the axis.
    [[nodiscard]] bool endsAt(double delay) const
    {
        return std::abs(std::abs(source + delay) - end) <= tolerance();
    }
};

/// Returns the axis of the oscilloscope type; while that is not known, the axes of both types, the
/// longer one last.
QVector<Axis> possibleAxes(const Recognition &recognition)
{
    constexpr double milliseconds = 1000.0;
    const double source = recognition.instants.source * milliseconds;
    QVector<Axis> axes;
    for (const OscilloscopeType type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        if (type == recognition.type.value_or(type)) {
            const double end = recordSpan(type) / 2 * milliseconds;
            // Without a source edge in the last record, the trigger (0) stands for it.
            axes += {end, std::abs(source) < end ? source : 0.0};
        }
    }
    return axes;
}

/// Flag the delays of a measurement if both equal those of the measurement before. When one of them
/// often repeats without the other, both may repeat by chance; then nothing is flagged.
void flagRepeated(const QVector<double> &toRf, const QVector<double> &toSink, SeriesFlags *flags)
{
    int rfAlone = 0;
    int sinkAlone = 0;
    int neither = 0;
    QVector<int> both;
    for (int i = 1; i < toRf.size(); ++i) {
        const bool rf = toRf[i] == toRf[i - 1];
        const bool sink = toSink[i] == toSink[i - 1];
        if (rf && sink) {
            both += i;
        } else {
            ++(rf ? rfAlone : sink ? sinkAlone : neither);
        }
    }
    // By chance, both repeat in about rfAlone * sinkAlone / neither pairs. One is added to each
    // count, since what did not happen in a short series may still be likely.
    if ((rfAlone + 1.0) * (sinkAlone + 1.0) > neither + 1.0) {
        return;
    }
    for (const int i : both) {
        (*flags)[SourceToRf][i] |= Flag::Repeated;
        (*flags)[SourceToSink][i] |= Flag::Repeated;
    }
}

/// Flag runs of equal delays if chance would bring one so long less than once in a hundred such
/// series. Values with another flag belong to no run, because their reason is known.
void flagStuck(const QVector<double> &values, QVector<Flags> *flags)
{
    constexpr double rare = 0.01;
    const QVector<Flags> others = *flags;
    int pairs = 0;
    int equal = 0;
    // Whether each value equals the one before. The element after the last value ends the last run.
    QVector<bool> repeats(values.size() + 1);
    for (int i = 1; i < values.size(); ++i) {
        const bool isPair = !others[i - 1] && !others[i];
        repeats[i] = isPair && values[i] == values[i - 1];
        pairs += int(isPair);
        equal += int(repeats[i]);
    }
    for (int first = 0, end = 1; first < values.size(); first = end++) {
        while (repeats[end]) {
            ++end;
        }
        const int length = end - first;
        if (length > 1 && values.size() * std::pow(double(equal) / pairs, length - 1) < rare) {
            std::fill(flags->begin() + first, flags->begin() + end, Flag::Stuck);
        }
    }
}

} // namespace

SeriesFlags flagDelays(const SeriesResults &results, const Recognition &recognition)
{
    const QVector<double> &toRf = results[SourceToRf].values;
    const QVector<double> &toHdmi = results[SourceToHdmi].values;
    const QVector<double> &toSink = results[SourceToSink].values;
    const QVector<Axis> axes = possibleAxes(recognition);
    const auto isAtEnd = [&axes](double delay) {
        return std::any_of(axes.begin(), axes.end(),
                           [delay](const Axis &axis) { return axis.endsAt(delay); });
    };
    // A longer RF delay counts from the start of the axis: the source edge is missing.
    const double furthest = axes.last().end - axes.last().source + axes.last().tolerance();
    const bool hdmiUsed = isMeasured(results, SourceToHdmi);

    SeriesFlags flags;
    for (QVector<Flags> &column : flags) {
        column.resize(toRf.size());
    }
    for (int i = 0; i < toRf.size(); ++i) {
        Flags &rf = flags[SourceToRf][i];
        Flags &hdmi = flags[SourceToHdmi][i];
        Flags &sink = flags[SourceToSink][i];
        rf.setFlag(Flag::EndOfAxis, isAtEnd(toRf[i]));
        sink.setFlag(Flag::EndOfAxis, isAtEnd(toSink[i]));
        if (toRf[i] == 0.0 && toSink[i] == 0.0) {
            rf |= Flag::NothingArrived;
            sink |= Flag::NothingArrived;
        } else if (toRf[i] > furthest || (toRf[i] == 0.0 && toSink[i] < 0.0)) {
            rf |= Flag::NoSource;
            sink |= Flag::NoSource;
        } else if (toRf[i] == 0.0) {
            rf |= Flag::OnTrigger;
        }
        hdmi.setFlag(Flag::NoHdmiValue, hdmiUsed && toHdmi[i] == 0.0);
        hdmi.setFlag(Flag::NoHdmiEvent, toHdmi[i] == noHdmiEvent);
        for (const DelayKind kind : delayKinds) {
            flags[kind][i].setFlag(Flag::NotFinite, !std::isfinite(results[kind].values[i]));
        }
    }
    flagRepeated(toRf, toSink, &flags);
    for (const DelayKind kind : delayKinds) {
        flagStuck(results[kind].values, &flags[kind]);
    }
    return flags;
}

bool isMeasured(const SeriesResults &results, DelayKind kind)
{
    const QVector<double> &values = results[kind].values;
    return kind != SourceToHdmi ||
           std::any_of(values.begin(), values.end(), [](double value) { return value != 0.0; });
}

QString flagReasons(Flags flags)
{
    QStringList reasons;
    for (const auto &[flag, reason] : reasonsByFlag) {
        if (flags.testFlag(flag)) {
            reasons += reason;
        }
    }
    return reasons.join("; ");
}
