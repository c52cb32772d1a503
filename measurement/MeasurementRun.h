#pragma once

#include "measurement/Record.h"
#include "measurement/ResultsFile.h"
#include "visa/VisaTypes.h"

#include <QString>

/// The settings of a series. The instruments are set up already.
struct SeriesSettings
{
    ViSession oscilloscope = 0;
    ViSession spectrumAnalyzer = 0;
    ViSession videoAnalyzer = 0;
    OscilloscopeType oscilloscopeType = OscilloscopeType::Kvx;
    bool rfFromOscilloscope = false; ///< from channel 3, otherwise from the analyzer's own trace
    bool measureHdmi = false;        ///< read the delay that the video analyzer measures
    int count = 0;                   ///< measurements; none when not positive
    bool save = false;               ///< write the results and traces
    QString filePrefix;              ///< start of all file names, without a separator
};

/// Run a series of measurements. *record is what the previous series left. Each measurement
/// replaces the traces that it can read, and appends to the time axes. *results receives the delays
/// of each measurement (HDMI: 0 when none is read) and their means.
///
/// When an exchange of an acquisition fails, the rest of the acquisition is left out, except after
/// "SING". The measurement goes on with the traces that are there. A record whose first source
/// sample is implausible is taken again, without a limit.
///
/// Returns 0, or -1 when the results file cannot be written; then no trace file is written either.
int runSeries(const SeriesSettings &settings, Record *record, SeriesResults *results);
