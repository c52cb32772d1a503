#include "analysis/TypeRecognition.h"

#include "instrument/NumberText.h"
#include "measurement/DelayComputation.h"
#include "measurement/Record.h"

namespace {

/// The instants that the record's edges have with a type, if that gives the delays saved.
std::optional<Instants> match(const Record &record, const SeriesResults &results,
                              OscilloscopeType type)
{
    // Where an edge is missing, the first record of a session has its delay computed; later ones
    // find the start of another axis there. Both are tried, and the costlier one last.
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
    const auto kvx = match(record, results, OscilloscopeType::Kvx);
    const auto lpa4004 = match(record, results, OscilloscopeType::Lpa4004);
    if (kvx && lpa4004) {
        found.remark = record.samples == 0 ? "The source trace is empty: nothing arrived."
                                           : "Both oscilloscope types give the saved delays.";
    } else if (kvx) {
        found.type = OscilloscopeType::Kvx;
        found.instants = *kvx;
    } else if (lpa4004) {
        found.type = OscilloscopeType::Lpa4004;
        found.instants = *lpa4004;
    } else {
        found.contradicts = true;
        found.remark = "The traces give the saved delays with neither oscilloscope type: the type "
                       "or the record length was changed within the session, or a file was changed "
                       "later. The saved delays are wrong.";
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
