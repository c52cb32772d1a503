#pragma once

#include "analysis/Series.h"

class QPoint;
class QwtPlot;

// The plots of one series, or of two over each other.

/// Returns the delays to plot: HDMI only if it was measured.
QVector<DelayKind> plottedDelays(const QVector<Series> &selection);

/// Draw a delay over the number of its measurement: points, flagged ones marked, a line at the
/// median and a band from P5 to P95, both without the flagged values. A long series is drawn in
/// columns of measurements, each with its median, band and extremes. What lies beyond delayAxis()
/// is drawn at the border and counted.
QwtPlot *driftPlot(const QVector<Series> &selection, DelayKind kind);

/// Describe the measurement that is drawn nearest to a place (pixels) on the canvas of a drift
/// plot: series, number, value and flags. Empty when none is near.
QString measurementText(const QwtPlot &plot, const QVector<Series> &selection, DelayKind kind,
                        const QPoint &place);

/// Draw a histogram with lines at the medians: counts for one series, shares in per cent for two.
/// Flagged values are left out; the legend has their number.
QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind);

/// Draw the share of the delays, in per cent, that are no longer than each delay. P50, P95 and P99
/// are marked, and stand in the legend. Flagged values are left out.
QwtPlot *cumulativePlot(const QVector<Series> &selection, DelayKind kind);

/// Draw the last record of a series with its three edges over time, or over the sample number while
/// the oscilloscope type is not known. A text below names what is missing. The traces are drawn in
/// columns (see TraceData): fewer for paper than for a screen, where one can zoom in.
QwtPlot *recordPlot(const Series &series, int columns = 4096);
