#pragma once

#include "instrument/InstrumentIo.h"
#include "instrument/VisaBinding.h"
#include "measurement/MeasurementRun.h"
#include "setup/OscilloscopeSetup.h"
#include "setup/SpectrumAnalyzerSetup.h"
#include "setup/VideoAnalyzerSetup.h"
#include "simulator/Laboratory.h"
#include "simulator/VisaFunctions.h"

#include <QString>

// The bench, linked into the test and bound by hand.

inline void bindBench()
{
    p_viOpenDefaultRM = viOpenDefaultRM;
    p_viOpen = viOpen;
    p_viClose = viClose;
    p_viWrite = viWrite;
    p_viRead = viRead;
    p_viReadToFile = viReadToFile;
    p_viSetAttribute = viSetAttribute;
    p_viGpibControlREN = viGpibControlREN;
}

/// The instruments of a series on the bench and their set-ups, through the bound entry points.
class BenchInstruments
{
public:
    BenchInstruments(int oscilloscopeType, bool ifOutput,
                     const char *spectrumAnalyzer = "spectrum-analyzer-qan")
        : hosts{oscilloscopeType == 0 ? "oscilloscope-kvx" : "oscilloscope", spectrumAnalyzer,
                "video-analyzer"}
    {
        iaOpenDefaultRM(&manager);
        series.oscilloscopeType = oscilloscopeType;
        series.rfFromOscilloscope = ifOutput;
    }
    ~BenchInstruments() { iaClose(manager); }
    BenchInstruments(const BenchInstruments &) = delete;
    BenchInstruments &operator=(const BenchInstruments &) = delete;

    ViStatus setUpOscilloscope()
    {
        const int type = series.oscilloscopeType;
        return ::setUpOscilloscope(manager,
                                   {resource(0), true, type, 0.027, series.rfFromOscilloscope},
                                   &series.oscilloscope);
    }
    ViStatus setUpSpectrumAnalyzer()
    {
        return ::setUpSpectrumAnalyzer(manager, {resource(1), 5.192e9, series.oscilloscopeType},
                                       &series.spectrumAnalyzer);
    }
    ViStatus setUpVideoAnalyzer()
    {
        return ::setUpVideoAnalyzer(manager, {resource(2), true, 35}, series.spectrumAnalyzer,
                                    &series.videoAnalyzer);
    }
    bool setUpAll()
    {
        return setUpOscilloscope() == VI_SUCCESS && setUpSpectrumAnalyzer() == VI_SUCCESS &&
               setUpVideoAnalyzer() == VI_SUCCESS;
    }

    /// Shorten the records of a KVx, which the analyzer's sweep follows, to save time.
    bool shortenRecords(int samples)
    {
        const QString points = QString::number(samples);
        QString reply;
        return series.oscilloscopeType != 0 ||
               (iaQueryf_s(series.oscilloscope, "ACQ:POIN " + points + ";*OPC?\n", &reply) ==
                    VI_SUCCESS &&
                iaQueryf_s(series.spectrumAnalyzer, "SWE:POIN " + points + ";*OPC?\n", &reply) ==
                    VI_SUCCESS);
    }

    [[nodiscard]] QVector<simulator::Instrument *> instruments() const
    {
        QVector<simulator::Instrument *> found;
        for (const QString &host : hosts) {
            found += simulator::bench().find(host.toStdString());
        }
        return found;
    }
    /// What the instruments complain of, by their error queues, which are empty then.
    QString takeErrors()
    {
        QString text;
        for (simulator::Instrument *instrument : instruments()) {
            while (!instrument->errors().isEmpty()) {
                text += QString::fromStdString(instrument->errors().next()) + ' ';
            }
        }
        return text;
    }

    SeriesSettings series;

private:
    [[nodiscard]] QString resource(int which) const
    {
        return "TCPIP0::" + hosts[which] + "::INSTR";
    }

    QVector<QString> hosts; ///< of oscilloscope, spectrum analyzer and video analyzer
    ViSession manager = 0;
};
