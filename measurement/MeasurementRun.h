#pragma once

#include "instrument/VisaTypes.h"

#include <QString>
#include <QVector>

/// The instruments of a series of measurements and what the operator chose for it.
struct SeriesSettings
{
    ViSession oscilloscope = 0;
    ViSession spectrumAnalyzer = 0;
    ViSession videoAnalyzer = 0;
    int oscilloscopeType = 0;        ///< command dialect: 0 "KVx", otherwise "LPA4004"
    bool rfFromOscilloscope = false; ///< RF envelope from channel 3, else the analyzer's trace
    bool measureHdmi = false;        ///< the video analyzer takes part
    int count = 0;                   ///< number of measurements
    bool save = false;               ///< write the results file and the trace files
    QString filePrefix;              ///< the files' names are appended as they are
};

/// Run a series of measurements. Source, RF (normalised) and sink keep the last record's traces;
/// time grows by one axis for every record attempted. NSmp, the instants t_src, t_rf and t_snk
/// and the means mS2Rf, mS2Hd and mS2Snk are left in the program-wide values.
///
/// An exchange that fails ends its acquisition, and the measurement goes on with the traces that
/// there are. A record whose source starts implausibly is taken again, as often as it takes.
///
/// Returns 0, or -1 when the results file cannot be opened; then no trace file is written either.
int runSeries(const SeriesSettings &settings, QVector<double> *source, QVector<double> *rf,
              QVector<double> *sink, QVector<double> *time);
