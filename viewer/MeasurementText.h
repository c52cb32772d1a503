#pragma once

#include "analysis/Series.h"

class QPoint;
class QwtPlot;

/// Describe the measurement that is drawn nearest to a place (pixels) on the canvas of a drift
/// plot: series, number, value and flags. Empty when none is near.
QString measurementText(const QwtPlot &plot, const QVector<Series> &selection, DelayKind kind,
                        const QPoint &place);
