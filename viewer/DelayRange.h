#pragma once

#include "analysis/Series.h"

#include <qwt_interval.h>

/// Find the range of the delays without flags, or of all where there are none, in milliseconds.
/// Delays more than five interquartile ranges from the quartiles do not widen it, so that an
/// outlier flattens no plot; but it holds those from P5 to P95, where there are enough for these.
QwtInterval delayRange(const QVector<Series> &selection, DelayKind kind);

/// Add some air to a range, for an axis.
QwtInterval withAir(const QwtInterval &range);

/// Find the distance of two delays that a series can tell apart, in milliseconds: the sampling
/// interval. It is 0 when that is not known, and for HDMI, which is the video analyzer's.
double delayStep(const Series &series, DelayKind kind);
