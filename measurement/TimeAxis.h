#pragma once

#include "instrument/OscilloscopeType.h"

#include <QVector>

/// Compute the instant of a sample, in seconds from the trigger, in a record of the given number
/// of samples: recordSpan() centred on the trigger. An index past the record continues the axis.
double sampleInstant(int index, int samples, OscilloscopeType type);

/// Append the axis of one record to the axes of the records before it, as far as a QVector can
/// hold them and memory lasts; then they stop growing.
void appendTimeAxis(int samples, OscilloscopeType type, QVector<double> *axes);
