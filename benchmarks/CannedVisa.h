#pragma once

#include "measurement/MeasurementRun.h"

#include <QByteArray>

/// A VISA library without instruments: every answer lies ready in memory, traces as blocks of
/// 32-bit floats. It costs as little as one can, so that the program's own cost shows.
namespace canned {

/// Samples of a trace.
constexpr int recordLength = 20000;

/// Lead the p_ entry points here.
void bind();

/// A series of one measurement with all three instruments, for an oscilloscope type.
SeriesSettings series(OscilloscopeType type);

/// A command of a measurement, and how many bytes each read of its answer asks for; but for what
/// goes into a file.
struct Exchange
{
    QByteArray command;
    QVector<ViUInt32> reads;
};
using Exchanges = QVector<Exchange>;

/// Take one measurement and note its exchanges; none when its traces did not all arrive.
Exchanges exchanges(OscilloscopeType type);

} // namespace canned
