#pragma once

#include "analysis/Series.h"

/// Describe a series in lines for terminals and logs: what it is, one line per delay with its
/// statistics (a second one without the flagged values, where there are any), and its flags.
QString summarise(const Series &series);

/// Describe several series in a line each: the medians without flagged values, and what the flags
/// and the traces tell.
QString summariseBriefly(const QVector<Series> &series);

/// Compare two series: what speaks against that, then the difference of the medians of each delay,
/// with its interval. Flagged values are left out.
QString compareSeries(const Series &first, const Series &second);

/// Describe each series, and before them how two differ.
QString describeSelection(const QVector<Series> &selection);

/// Break the lines of a text that are longer than so many characters between words; what is broken
/// off is indented. A word longer than a line, as a path, is shortened.
QString wrapText(const QString &text, int width);

/// Shorten a text to so many characters in its middle: how a path begins and ends tells most.
QString shortenText(const QString &text, int width);

/// As long as lines of statistics are.
constexpr int statisticsWidth = 120;
