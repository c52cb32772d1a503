#pragma once

#include "analysis/Series.h"

class QPoint;
class QwtPlot;

// The plots of one series, or of two over each other.

/// Returns the delays that are worth a plot: HDMI only where it was measured.
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

/// Draw how often each delay came, with lines at the medians: counts for one series, and for two
/// shares in per cent. Flagged values are left out, and counted in the legend.
QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind);

/// Draw the share of the delays, in per cent, that are no longer than each delay. P50, P95 and P99
/// are marked, and told in the legend. Flagged values are left out.
QwtPlot *cumulativePlot(const QVector<Series> &selection, DelayKind kind);

/// Draw the last record of a series with its three edges over time, or over the sample number while
/// the oscilloscope type is not known. A text below names what is missing. Of each column only the
/// extremes are drawn: a screen, where a person zooms in, needs many columns.
QwtPlot *recordPlot(const Series &series, int columns = 4096);
