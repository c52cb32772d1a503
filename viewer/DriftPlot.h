#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw a delay over the number of its measurement, for one or two series: points, flagged ones
/// marked, a line at the median and a band from P5 to P95, both without the flagged values. A long
/// series is drawn in columns of measurements, each with its median, band and extremes. The axis is
/// that of delayRange(); what is beyond it lies at its border and is counted.
QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind);
