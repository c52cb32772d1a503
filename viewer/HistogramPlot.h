#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw how often each delay came, with lines at the medians: counts for one series, and for two
/// over each other shares in per cent. Flagged values are left out, and their number is told.
QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind);
