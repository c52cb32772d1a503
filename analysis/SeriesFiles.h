#pragma once

#include <QDateTime>
#include <QStringList>

// The names of a series' files: the program, the time of the series, and what is in the file.

/// Returns the folder where the programs of this user save series.
QString resultsFolder();

/// Returns the results files in a folder, oldest first.
QStringList seriesIn(const QString &folder);

/// Returns the time in the name of a results file; invalid when there is none.
QDateTime seriesTime(const QString &fileName);

/// Returns the label in the name of a results file: the text that somebody has put in front of the
/// program's own name, such as "FW2.1" in "FW2.1_Orvanta2026-03-05_14-07-09_Results.txt"; mostly
/// empty.
QString seriesLabel(const QString &fileName);

/// Returns the name of a trace file of a series; the trace is "src", "rf" or "snk". The file is
/// that of measurement 001: all measurements' files hold the traces of the last one. The name may
/// lack the label that the results file has.
QString traceFile(const QString &fileName, const QString &trace);
