#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw a delay over the number of its measurement, for one or two series: points, flagged ones
/// marked, a line at the median and a band from P5 to P95, both without the flagged values. The
/// axis is that of the values without flags; a flagged value beyond it lies at its border.
QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind);
