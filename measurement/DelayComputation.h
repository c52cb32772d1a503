#pragma once

#include "measurement/Record.h"

/// The edges of one record and the delays between them.
struct Delays
{
    Instants instants;
    double sourceToRf = 0.0;   ///< milliseconds; 0 when the RF instant is exactly 0
    double sourceToSink = 0.0; ///< milliseconds
};

/// Find the edges in a record of n samples and compute the delays. The source edge is where the
/// source has risen by 35 mV above its first sample. The RF edge is the first of eight RF samples
/// in a row above a threshold, from the source edge on. The sink edge is where the sink reaches 60
/// mV. Source and sink are in volts, the RF envelope is normalised to 0 .. 0.2, the time axis is in
/// seconds. A missing edge counts as index n. The instants of source and sink are read from the
/// time axis, and computed for the oscilloscope type where it is too short; that of RF is always
/// computed.
Delays computeDelays(int n, const QVector<double> &source, const QVector<double> &rf,
                     const QVector<double> &sink, const QVector<double> &time,
                     OscilloscopeType type);
