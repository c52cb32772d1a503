#pragma once

#include "instrument/OscilloscopeType.h"

#include <QArrayData>
#include <QVector>

#include <limits>

/// Where the edges of one record lie, in seconds from the trigger.
struct Instants
{
    double source = 0.0;
    double rf = 0.0;
    double sink = 0.0;
};

/// A record, and the time axes of all records so far.
struct Record
{
    QVector<double> source; ///< volts
    QVector<double> rf;     ///< normalised to 0 .. 0.2
    QVector<double> sink;   ///< volts
    QVector<double> time;   ///< seconds; an axis for each record attempted; delays use the first
    int samples = 0;        ///< of one record; source, rf and sink are used up to this count
    Instants instants;      ///< of its edges
};

/// The largest number of values that a QVector<double> can hold: Qt 5 keeps a vector's block,
/// header included, below 2 GiB.
constexpr int maxVectorSize = static_cast<int>(
    (static_cast<std::size_t>(std::numeric_limits<int>::max()) - sizeof(QArrayData)) /
    sizeof(double));

/// Returns the instant of a sample, in seconds from the trigger, in a record of the given number
/// of samples: recordSpan() centred on the trigger. Indices past the record continue the axis.
double sampleInstant(int index, int samples, OscilloscopeType type);

/// Append the axis of one record to the axes of the records before it. They stop growing when
/// memory or the room in a QVector runs out.
void appendTimeAxis(int samples, OscilloscopeType type, QVector<double> *axes);

/// Scale an RF envelope in place so that its smallest sample becomes 0 and its largest 0.2. Any
/// unit will do. An envelope of equal samples becomes NaN.
void normaliseEnvelope(QVector<double> *rf);
