#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw how often each delay came, for one series or two over each other, with lines at the
/// medians. Flagged values are left out, and their number is told.
QwtPlot *histogramPlot(const QVector<Series> &selection, DelayKind kind);
