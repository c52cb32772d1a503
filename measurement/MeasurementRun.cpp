#include "measurement/MeasurementRun.h"

#include "instrument/InstrumentIo.h"
#include "measurement/DelayComputation.h"
#include "measurement/Globals.h"
#include "measurement/ResultsFile.h"
#include "measurement/RfEnvelope.h"
#include "measurement/TimeAxis.h"
#include "measurement/TraceFile.h"
#include "measurement/WaveformTransfer.h"

#include <QDateTime>

#include <numeric>

namespace {

// A source record must start between these levels (volts, both excluded).
constexpr double lowestStart = -0.05;
constexpr double highestStart = 0.3;

ViStatus send(ViSession session, const QString &command)
{
    QString reply;
    return iaQueryf_s(session, command, &reply);
}

/// Fetch the source trace; its length becomes the record length.
bool fetchSource(ViSession oscilloscope, QVector<double> *source)
{
    const bool fetched = queryTrace(oscilloscope, "CHAN1:DATA?\n", source);
    if (fetched) {
        NSmp = source->size();
    }
    return fetched;
}

void acquireKvx(const SeriesSettings &settings, QVector<double> *source)
{
    if (send(settings.oscilloscope, "INIT:CONT OFF;*OPC?\n") == VI_SUCCESS &&
        send(settings.oscilloscope, "*TRG;*OPC?\n") == VI_SUCCESS &&
        send(settings.oscilloscope, "FORM REAL,32;*OPC?\n") == VI_SUCCESS) {
        fetchSource(settings.oscilloscope, source);
    }
}

void acquireLpa4004(const SeriesSettings &settings, QVector<double> *source)
{
    send(settings.oscilloscope, "SING;*OPC?\n"); // its status is ignored
    if (send(settings.oscilloscope, "FORM REAL,32;*OPC?\n") == VI_SUCCESS &&
        send(settings.oscilloscope, "*TRG;*OPC?\n") == VI_SUCCESS &&
        fetchSource(settings.oscilloscope, source)) {
        // As many points in the analyzer's trace as in the record.
        send(settings.spectrumAnalyzer, "SWE:POIN " + QString::number(NSmp) + ";*OPC?\n");
    }
}

/// Take one record: arm the analyzer, trigger the oscilloscope, fetch the source.
void acquire(const SeriesSettings &settings, QVector<double> *source)
{
    if (send(settings.spectrumAnalyzer, "INIT:CONT OFF;*OPC?\n") != VI_SUCCESS) {
        return;
    }
    if (settings.oscilloscopeType == 0) {
        acquireKvx(settings, source);
    } else {
        acquireLpa4004(settings, source);
    }
}

/// Without any sample there is nothing to reject: an oscilloscope that never answered must not
/// keep the run waiting for a better record.
bool isPlausible(const QVector<double> &source)
{
    return source.isEmpty() || (source[0] > lowestStart && source[0] < highestStart);
}

void fetchRf(const SeriesSettings &settings, QVector<double> *rf)
{
    if (settings.rfFromOscilloscope) {
        queryTrace(settings.oscilloscope, "CHAN3:DATA?\n", rf);
    } else if (send(settings.spectrumAnalyzer, "FORM REAL,32;*OPC?\n") == VI_SUCCESS) {
        queryTrace(settings.spectrumAnalyzer, "TRAC? TRACE1, " + QString::number(NSmp) + "\n", rf);
    }
}

/// Read the HDMI delay in milliseconds, once the video analyzer says that it has one.
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
    send(settings.oscilloscope, settings.oscilloscopeType == 0 ? "RUNC;*OPC?\n" : "RUN;*OPC?\n");
    send(settings.spectrumAnalyzer, "INIT:CONT ON;*OPC?\n");
}

/// The sum of all values over the count that was asked for: NaN for a count of 0.
double mean(const QVector<double> &values, int count)
{
    return std::accumulate(values.begin(), values.end(), 0.0) / count;
}

int saveSeries(const SeriesSettings &settings, const SeriesResults &results,
               const QVector<double> &source, const QVector<double> &rf,
               const QVector<double> &sink)
{
    const QString prefix =
        settings.filePrefix + QDateTime::currentDateTime().toString("yyyy-MM-dd_hh-mm-ss_");
    if (!writeResults(prefix + "Results.txt", results)) {
        return -1;
    }
    // Every set holds the last measurement's traces; only the numbers follow the count.
    for (int i = 0; i < settings.count; ++i) {
        const QString set = prefix + QString("%1").arg(i + 1, 3, 10, QChar('0'));
        saveTrace(set + "_src.bin", source, NSmp);
        saveTrace(set + "_rf.bin", rf, NSmp);
        saveTrace(set + "_snk.bin", sink, NSmp);
    }
    return 0;
}

} // namespace

int runSeries(const SeriesSettings &settings, QVector<double> *source, QVector<double> *rf,
              QVector<double> *sink, QVector<double> *time)
{
    SeriesResults results;
    for (int i = 0; i < settings.count; ++i) {
        do {
            acquire(settings, source);
            appendTimeAxis(NSmp, settings.oscilloscopeType, time);
        } while (!isPlausible(*source));

        fetchRf(settings, rf);
        normaliseEnvelope(rf);
        double hdmiDelay = 0.0;
        if (settings.measureHdmi) {
            readHdmiDelay(settings.videoAnalyzer, &hdmiDelay);
        }
        queryTrace(settings.oscilloscope, "CHAN2:DATA?\n", sink);

        const Delays delays =
            computeDelays(NSmp, *source, *rf, *sink, *time, settings.oscilloscopeType);
        publishInstants(delays);
        results.sourceToRf.values.append(delays.sourceToRf);
        results.sourceToHdmi.values.append(hdmiDelay);
        results.sourceToSink.values.append(delays.sourceToSink);
    }
    release(settings);

    for (DelaySeries *series :
         {&results.sourceToRf, &results.sourceToHdmi, &results.sourceToSink}) {
        series->mean = mean(series->values, settings.count);
    }
    mS2Rf = results.sourceToRf.mean;
    mS2Hd = results.sourceToHdmi.mean;
    mS2Snk = results.sourceToSink.mean;

    return settings.save ? saveSeries(settings, results, *source, *rf, *sink) : 0;
}
