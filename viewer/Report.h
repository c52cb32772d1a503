#pragma once

#include "analysis/Series.h"

class QwtPlot;

/// List the delays that a plot is worth: HDMI only where it was measured.
QVector<DelayKind> plottedDelays(const QVector<Series> &selection);

/// Describe one series, or two and their differences, as text.
QString describeSelection(const QVector<Series> &selection);

/// Write a report on series, with statistics and plots: two are compared on one page, others get a
/// page each. The file's name tells its kind. Returns false and a sentence when that fails.
bool writeReport(const QVector<Series> &series, const QString &fileName, QString *problem);
