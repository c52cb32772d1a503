#pragma once

#include "measurement/Record.h"
#include "measurement/ResultsFile.h"
#include "visa/VisaTypes.h"

#include <QString>

/// What a series is run with; the three instruments are set up before.
struct SeriesSettings
{
    ViSession oscilloscope = 0;
    ViSession spectrumAnalyzer = 0;
    ViSession videoAnalyzer = 0;
    OscilloscopeType oscilloscopeType = OscilloscopeType::Kvx;
    bool rfFromOscilloscope = false; ///< RF is channel 3, else the analyzer's own trace
    bool measureHdmi = false;        ///< ask the video analyzer, too
    int count = 0;                   ///< measurements; none when not positive
    bool save = false;               ///< write the results and traces
    QString filePrefix;              ///< the files' names are appended as they are
};

/// Run a series of measurements, from the record that the last one left, into that record and the
/// results: the delays of each measurement and their means.
///
/// An exchange that fails ends its acquisition, and the measurement goes on with the traces that
/// there are. A record whose source starts implausibly is taken again, as often as it takes.
///
/// Returns 0, or -1 when the results file cannot be written; then no trace file is written either.
int runSeries(const SeriesSettings &settings, Record *record, SeriesResults *results);
