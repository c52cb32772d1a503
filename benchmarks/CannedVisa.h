#pragma once

#include "measurement/MeasurementRun.h"

#include <QByteArrayList>

/// A VISA library without instruments: every answer lies ready in memory, traces as blocks of
/// 32-bit floats. It costs as little as one can, so that the program's own cost shows.
namespace canned {

/// Samples of a trace.
constexpr int recordLength = 20000;

/// Lead the p_ entry points here.
void bind();

/// A series of one measurement with all three instruments, for an oscilloscope type.
SeriesSettings series(OscilloscopeType type);

/// The commands of one measurement, traces last.
struct Exchanges
{
    QByteArrayList queries;
    QByteArrayList traces;
};
Exchanges exchanges(OscilloscopeType type);

} // namespace canned
