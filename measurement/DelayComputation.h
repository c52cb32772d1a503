#pragma once

#include "measurement/Record.h"

/// The edges of one record and the delays between them.
struct Delays
{
    Instants instants;
    double sourceToRf = 0.0;   ///< milliseconds; 0 when the RF instant is exactly 0
    double sourceToSink = 0.0; ///< milliseconds
};

/// Find the edges in a record of n samples: where the source rises above its first sample, where
/// eight RF samples in a row are on at or after that, and where the sink's level is reached.
/// Source and sink are in volts, the RF envelope is normalised to 0 .. 0.2, the time axis is in
/// seconds. An edge that does not come lies at index n; an instant that the axis does not hold is
/// computed from the index for the oscilloscope type.
Delays computeDelays(int n, const QVector<double> &source, const QVector<double> &rf,
                     const QVector<double> &sink, const QVector<double> &time,
                     OscilloscopeType type);
