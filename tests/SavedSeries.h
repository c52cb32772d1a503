#pragma once

#include "analysis/Series.h"
#include "analysis/SeriesFiles.h"
#include "measurement/TraceFile.h"

#include <algorithm>
#include <numeric>

using Values = QVector<double>;

/// A record of 1001 samples with its edges at these indices; at 1001 there is none.
inline Record recordOf(int source, int rf, int sink)
{
    const auto step = [](int edge) {
        Values trace(1001, 0.0);
        std::fill(trace.begin() + edge, trace.end(), 0.2);
        return trace;
    };
    return {step(source), step(rf), step(sink), {}, 1001, {}};
}

const Record usual = recordOf(500, 545, 620); // 45 and 120 ms of a KVx record

/// Save a series as the program does.
inline QString save(const QString &folder, const Values &rf, const Values &hdmi, const Values &sink,
                    const Record &record = usual, const QString &stamp = "2026-03-05_14-07-09")
{
    const auto delay = [](const Values &values) {
        return DelaySeries{values,
                           std::accumulate(values.begin(), values.end(), 0.0) / values.size()};
    };
    QString file = folder + "/Orvanta" + stamp + "_Results.txt";
    writeResults(file, {delay(rf), delay(hdmi), delay(sink)});
    saveTrace(traceFile(file, "src"), record.source, record.samples);
    saveTrace(traceFile(file, "rf"), record.rf, record.samples);
    saveTrace(traceFile(file, "snk"), record.sink, record.samples);
    return file;
}

/// Open a series; one without measurements when that fails.
inline Series open(const QString &file)
{
    return loadSeries({file}).series.value(0);
}

/// A series with these delays, to RF and to the sink alike, as measured by KVx.
inline Series seriesOf(const Values &delays)
{
    Series series;
    series.fileName = "measured";
    series.results = {{{delays, 0}, {Values(delays.size(), 0), 0}, {delays, 0}}};
    series.samples = 10001;
    series.oscilloscope.type = OscilloscopeType::Kvx;
    series.flags = flagDelays(series.results, series.oscilloscope);
    return series;
}

/// Returns values whose neighbours differ, with little correlation. The last one is given.
inline Values varied(int count, double last)
{
    Values values(count);
    for (int back = 0; back < count; ++back) {
        values[count - 1 - back] = last + 2 * back % 11;
    }
    return values;
}
