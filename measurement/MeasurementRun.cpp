#include "measurement/MeasurementRun.h"

#include "instrument/CommandChain.h"
#include "instrument/InstrumentIo.h"
#include "measurement/DelayComputation.h"
#include "measurement/TraceFile.h"
#include "measurement/WaveformTransfer.h"

#include <QDateTime>
#include <QLocale>

#include <numeric>

namespace {

// A source trace must start between these levels (volts, both excluded).
constexpr double lowestStart = -0.05;
constexpr double highestStart = 0.3;

/// Fetch the source trace; its length becomes the record length.
bool fetchSource(ViSession oscilloscope, Record *record)
{
    const bool fetched = queryTrace(oscilloscope, "CHAN1:DATA?\n", &record->source);
    if (fetched) {
        record->samples = record->source.size();
    }
    return fetched;
}

void acquireKvx(const SeriesSettings &settings, Record *record)
{
    const QStringList takeRecord = {
        "INIT:CONT OFF;*OPC?\n",
        "*TRG;*OPC?\n",
        "FORM REAL,32;*OPC?\n",
    };
    if (sendOrStop(settings.oscilloscope, takeRecord) == VI_SUCCESS) {
        fetchSource(settings.oscilloscope, record);
    }
}

void acquireLpa4004(const SeriesSettings &settings, Record *record)
{
    const QStringList takeRecord = {
        "FORM REAL,32;*OPC?\n",
        "*TRG;*OPC?\n",
    };
    sendIgnoringFailure(settings.oscilloscope, {"SING;*OPC?\n"});
    if (sendOrStop(settings.oscilloscope, takeRecord) == VI_SUCCESS &&
        fetchSource(settings.oscilloscope, record)) {
        // The analyzer's trace gets as many points as the record.
        sendIgnoringFailure(settings.spectrumAnalyzer,
                            {"SWE:POIN " + QString::number(record->samples) + ";*OPC?\n"});
    }
}

/// Take one record: end the analyzer's continuous sweeps, trigger the oscilloscope, fetch the
/// source.
void acquire(const SeriesSettings &settings, Record *record)
{
    if (sendOrStop(settings.spectrumAnalyzer, {"INIT:CONT OFF;*OPC?\n"}) != VI_SUCCESS) {
        return;
    }
    switch (settings.oscilloscopeType) {
    case OscilloscopeType::Kvx:
        acquireKvx(settings, record);
        break;
    case OscilloscopeType::Lpa4004:
        acquireLpa4004(settings, record);
        break;
    }
}

/// Returns whether a source trace starts at a plausible level. An empty trace is accepted:
/// otherwise an oscilloscope that never answered would keep the series in its loop for ever.
bool isPlausible(const QVector<double> &source)
{
    return source.isEmpty() || (source[0] > lowestStart && source[0] < highestStart);
}

void fetchRf(const SeriesSettings &settings, Record *record)
{
    if (settings.rfFromOscilloscope) {
        queryTrace(settings.oscilloscope, "CHAN3:DATA?\n", &record->rf);
    } else if (sendOrStop(settings.spectrumAnalyzer, {"FORM REAL,32;*OPC?\n"}) == VI_SUCCESS) {
        queryTrace(settings.spectrumAnalyzer,
                   "TRAC? TRACE1, " + QString::number(record->samples) + "\n", &record->rf);
    }
}

/// Read the HDMI delay in milliseconds, if the video analyzer reports that it has one. It is asked
/// for the number of measurements, too; only a failure of that query counts.
void readHdmiDelay(ViSession videoAnalyzer, double *delay)
{
    int state = 0;
    int measured = 0;
    if (iaQueryf_i(videoAnalyzer, "READ:AVDA:TTV:STAT?\n", &state) == VI_SUCCESS && state == 1 &&
        iaQueryf_i(videoAnalyzer, "READ:AVDA:TTV:COUN?\n", &measured) == VI_SUCCESS) {
        iaQueryf_f(videoAnalyzer, "READ:AVDA:TTV:VAL?\n", delay);
    }
}

/// Return both instruments to free run.
void release(const SeriesSettings &settings)
{
    switch (settings.oscilloscopeType) {
    case OscilloscopeType::Kvx:
        sendIgnoringFailure(settings.oscilloscope, {"RUNC;*OPC?\n"});
        break;
    case OscilloscopeType::Lpa4004:
        sendIgnoringFailure(settings.oscilloscope, {"RUN;*OPC?\n"});
        break;
    }
    sendIgnoringFailure(settings.spectrumAnalyzer, {"INIT:CONT ON;*OPC?\n"});
}

/// Returns the sum of the values divided by the number of measurements: NaN when that is 0.
double mean(const QVector<double> &values, int count)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / count;
}

int saveSeries(const SeriesSettings &settings, const SeriesResults &results, const Record &record)
{
    // In the C locale, since other programs look for file names with ASCII digits.
    const QString prefix = settings.filePrefix + QLocale::c().toString(QDateTime::currentDateTime(),
                                                                       "yyyy-MM-dd_hh-mm-ss_");
    if (!writeResults(prefix + "Results.txt", results)) {
        return -1;
    }
    // All sets hold the traces of the last measurement: those of the others are not kept.
    for (int i = 0; i < settings.count; ++i) {
        const QString set = prefix + QString("%1").arg(i + 1, 3, 10, QChar('0'));
        saveTrace(set + "_src.bin", record.source, record.samples);
        saveTrace(set + "_rf.bin", record.rf, record.samples);
        saveTrace(set + "_snk.bin", record.sink, record.samples);
    }
    return 0;
}

} // namespace

int runSeries(const SeriesSettings &settings, Record *record, SeriesResults *results)
{
    *results = {};
    for (int i = 0; i < settings.count; ++i) {
        do {
            acquire(settings, record);
            appendTimeAxis(record->samples, settings.oscilloscopeType, &record->time);
        } while (!isPlausible(record->source));

        fetchRf(settings, record);
        normaliseEnvelope(&record->rf);
        double hdmiDelay = 0.0;
        if (settings.measureHdmi) {
            readHdmiDelay(settings.videoAnalyzer, &hdmiDelay);
        }
        queryTrace(settings.oscilloscope, "CHAN2:DATA?\n", &record->sink);

        const Delays delays = computeDelays(record->samples, record->source, record->rf,
                                            record->sink, record->time, settings.oscilloscopeType);
        record->instants = delays.instants;
        (*results)[SourceToRf].values += delays.sourceToRf;
        (*results)[SourceToHdmi].values += hdmiDelay;
        (*results)[SourceToSink].values += delays.sourceToSink;
    }
    release(settings);

    for (DelaySeries &series : *results) {
        series.mean = mean(series.values, settings.count);
    }
    return settings.save ? saveSeries(settings, *results, *record) : 0;
}
