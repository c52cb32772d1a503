#pragma once

#include <QVector>

/// The instant of a sample, in seconds from the trigger, in a record of the given number of
/// samples: 1 s centred on the trigger for oscilloscope type 0 ("KVx"), else 1.2 s ("LPA4004").
/// An index past the record continues the axis.
double sampleInstant(int index, int samples, int oscilloscopeType);

/// Append the axis of one record to the axes of the records before it, as far as a QVector can
/// hold them and memory lasts; then they stop growing.
void appendTimeAxis(int samples, int oscilloscopeType, QVector<double> *axes);
