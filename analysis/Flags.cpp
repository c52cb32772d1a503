#include "analysis/Flags.h"

#include "measurement/Record.h"

#include <QStringList>

#include <cmath>

namespace {

constexpr double noHdmiEvent = -230.0; // what the video analyzer says without an event
// How far the source's edge lies from that of the last record, at most, as a share of the record:
// it is triggered, so only a slow or noisy rise moves it.
constexpr double sourceTolerance = 0.01;

/// Where delays lie that end at an end of an axis, in milliseconds.
struct AxisEnds
{
    double early;
    double late;
    double tolerance;
};

/// The ends of the axis, or of both types' axes while the type is not known, the longer one last.
QVector<AxisEnds> axisEnds(int samples, const Recognition &recognition)
{
    constexpr double milliseconds = 1000.0;
    QVector<AxisEnds> all;
    for (const OscilloscopeType type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        if (type != recognition.type.value_or(type)) {
            continue;
        }
        const double halfSpan = recordSpan(type) / 2;
        const double end = samples < 2 ? halfSpan : sampleInstant(samples, samples, type);
        double source = recognition.instants.source;
        if (std::abs(source) >= halfSpan) {
            source = 0.0; // the last record has no source edge; then the trigger must do
        }
        all += {(-halfSpan - source) * milliseconds, (end - source) * milliseconds,
                sourceTolerance * 2 * halfSpan * milliseconds};
    }
    return all;
}

bool isAtEnd(double delay, const QVector<AxisEnds> &all)
{
    return std::any_of(all.begin(), all.end(), [delay](const AxisEnds &ends) {
        return std::abs(delay - ends.late) <= ends.tolerance ||
               std::abs(delay - ends.early) <= ends.tolerance;
    });
}

/// Flag RF and sink where both are those of the measurement before. Where RF or the sink repeats so
/// often alone that chance has both do it, nothing is flagged.
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
    // Chance brings rfAlone * sinkAlone / neither of them. Each is counted from 1: what did not
    // happen among a few pairs may still be likely.
    if ((rfAlone + 1.0) * (sinkAlone + 1.0) > neither + 1.0) {
        return;
    }
    for (const int i : both) {
        (*flags)[SourceToRf][i] |= Flag::Repeated;
        (*flags)[SourceToSink][i] |= Flag::Repeated;
    }
}

/// Flag runs of equal delays if chance would bring one so long less than once in a hundred such
/// series. Values with another flag are in no run: their reason is known.
void flagStuck(const QVector<double> &values, QVector<Flags> *flags)
{
    constexpr double rare = 0.01;
    const QVector<Flags> others = *flags;
    int pairs = 0;
    int equal = 0;
    QVector<bool> repeats(values.size() + 1); // the value before; the end of the last run is false
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

SeriesFlags flagDelays(const SeriesResults &results, int samples, const Recognition &recognition)
{
    const QVector<double> &toRf = results[SourceToRf].values;
    const QVector<double> &toHdmi = results[SourceToHdmi].values;
    const QVector<double> &toSink = results[SourceToSink].values;
    const QVector<AxisEnds> ends = axisEnds(samples, recognition);
    // Only an RF edge counted from the start of the axis is further than its end.
    const double furthest = ends.last().late + ends.last().tolerance;
    const bool hdmiUsed = isHdmiUsed(results);

    SeriesFlags flags;
    for (QVector<Flags> &column : flags) {
        column.resize(toRf.size());
    }
    for (int i = 0; i < toRf.size(); ++i) {
        Flags &rf = flags[SourceToRf][i];
        Flags &hdmi = flags[SourceToHdmi][i];
        Flags &sink = flags[SourceToSink][i];
        rf.setFlag(Flag::EndOfAxis, isAtEnd(toRf[i], ends));
        sink.setFlag(Flag::EndOfAxis, isAtEnd(toSink[i], ends));
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

bool isHdmiUsed(const SeriesResults &results)
{
    const QVector<double> &values = results[SourceToHdmi].values;
    return std::any_of(values.begin(), values.end(), [](double value) { return value != 0.0; });
}

bool isMeasured(const SeriesResults &results, DelayKind kind)
{
    return kind != SourceToHdmi || isHdmiUsed(results);
}

QVector<Flag> allFlags()
{
    return {Flag::EndOfAxis,   Flag::NoSource,    Flag::NothingArrived,
            Flag::OnTrigger,   Flag::Repeated,    Flag::Stuck,
            Flag::NoHdmiValue, Flag::NoHdmiEvent, Flag::NotFinite};
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
    case Flag::Stuck:
        return "stuck: more equal delays in a row than chance brings";
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
