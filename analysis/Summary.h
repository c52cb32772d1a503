#pragma once

#include "analysis/Series.h"

/// Returns a description of a series for terminals and logs: its file and oscilloscope, a line of
/// statistics for each delay (and a second one without the flagged values, if there are any), and
/// the flags.
QString summarise(const Series &series);

/// Returns a table with a line for each series: the medians without flagged values, the number of
/// flags, and whether the oscilloscope type is unknown or the delays are wrong.
QString summariseBriefly(const QVector<Series> &series);

/// Returns a comparison of two series: warnings, then the difference of the medians of each delay,
/// with its interval. Flagged values are left out.
QString compareSeries(const Series &first, const Series &second);

/// Returns a description of each series. Two series are compared first.
QString describeSelection(const QVector<Series> &selection);

/// Break lines that are longer than `width` characters between words, and indent what follows. A
/// word that is longer than a line, such as a path, is shortened.
QString wrapText(const QString &text, int width);

/// Shorten a text to `width` characters by cutting its middle: the two ends of a path say most.
QString shortenText(const QString &text, int width);

/// The length of a line of statistics, in characters.
constexpr int statisticsWidth = 120;
