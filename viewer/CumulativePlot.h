#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// Draw the share of the delays, in per cent, that are no longer than each delay, for one series or
/// for two over each other. P50, P95 and P99 are marked, and told in the legend. Flagged values are
/// left out.
QwtPlot *cumulativePlot(const QVector<Series> &selection, DelayKind kind);
