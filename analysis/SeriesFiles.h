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

/// Name a trace of the series' last measurement: "src", "rf" or "snk". All sets are equal, so the
/// first is as good as any. A series that has got a label need not have it in the traces' names.
QString traceFile(const QString &fileName, const QString &trace);
