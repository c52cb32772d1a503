#pragma once

#include <QDateTime>
#include <QStringList>

// What the files of a series are called: a prefix, the time of the series, and what it is.

/// Find the folder where the programs of this user save series.
QString resultsFolder();

/// List the results files in a folder, oldest first.
QStringList seriesIn(const QString &folder);

/// Read the time of a series from the name of its results file; invalid when that tells none.
QDateTime seriesTime(const QString &fileName);

/// Read the label from the name of a results file: the text that somebody has put in front of the
/// program's own, as "FW2.1" of "FW2.1_Orvanta2026-03-05_14-07-09_Results.txt"; mostly empty.
QString seriesLabel(const QString &fileName);

/// Name a trace of the series' last measurement: "src", "rf" or "snk". All sets hold that
/// measurement, so the first one will do. Only the results file need have the label in its name.
QString traceFile(const QString &fileName, const QString &trace);
