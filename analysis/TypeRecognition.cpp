#include "analysis/TypeRecognition.h"

#include "instrument/NumberText.h"
#include "measurement/DelayComputation.h"
#include "measurement/Record.h"

namespace {

/// Returns the instants of the record's edges with a type; nothing when they do not give the saved
/// delays.
std::optional<Instants> match(const Record &record, const SeriesResults &results,
                              OscilloscopeType type)
{
    // A missing edge has index n. In the first record of a session the time axis ends before it,
    // and its instant is computed. In later records another axis follows, and its start is taken.
    // Both are tried, the costlier one last.
    QVector<double> axes;
    for (const int axisCount : {0, 2}) {
        for (int i = 0; i < axisCount; ++i) {
            appendTimeAxis(record.samples, type, &axes);
        }
        const Delays delays =
            computeDelays(record.samples, record.source, record.rf, record.sink, axes, type);
        if (numberText(delays.sourceToRf) == numberText(results[SourceToRf].values.last()) &&
            numberText(delays.sourceToSink) == numberText(results[SourceToSink].values.last())) {
            return delays.instants;
        }
    }
    return std::nullopt;
}

} // namespace

Recognition recogniseType(const Record &record, const SeriesResults &results)
{
    Recognition found;
    if (results[SourceToRf].values.isEmpty()) {
        found.remark = "The series has no measurements.";
        return found;
    }
    int matches = 0;
    for (const OscilloscopeType type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        if (const auto instants = match(record, results, type)) {
            found.type = type;
            found.instants = *instants;
            ++matches;
        }
    }
    if (matches > 1) {
        found.type.reset();
        found.remark = record.samples == 0 ? "The source trace is empty: nothing arrived."
                                           : "Both oscilloscope types give the saved delays.";
    }
    if (matches == 0) {
        found.contradicts = true;
        found.remark =
            "Neither oscilloscope type gives the saved delays from these traces: the type "
            "or the record length was changed within the session, or a file was changed "
            "later. Do not use the saved delays.";
    }
    return found;
}

QString typeName(OscilloscopeType type)
{
    switch (type) {
    case OscilloscopeType::Kvx:
        return "KVx";
    case OscilloscopeType::Lpa4004:
        break;
    }
    return "LPA4004";
}
