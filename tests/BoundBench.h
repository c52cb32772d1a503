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
    BenchInstruments(int oscilloscopeType, bool ifOutput)
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
                                   {resource(type == 0 ? "oscilloscope-kvx" : "oscilloscope"), true,
                                    type, 0.027, series.rfFromOscilloscope},
                                   &series.oscilloscope);
    }
    ViStatus setUpSpectrumAnalyzer()
    {
        return ::setUpSpectrumAnalyzer(
            manager, {resource("spectrum-analyzer-qan"), 5.192e9, series.oscilloscopeType},
            &series.spectrumAnalyzer);
    }
    ViStatus setUpVideoAnalyzer()
    {
        return ::setUpVideoAnalyzer(manager, {resource("video-analyzer"), true, 35},
                                    series.spectrumAnalyzer, &series.videoAnalyzer);
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

    SeriesSettings series;

private:
    static QString resource(const QString &host) { return "TCPIP0::" + host + "::INSTR"; }

    ViSession manager = 0;
};
