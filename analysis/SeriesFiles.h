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

/// Name a trace of the series' last measurement: "src", "rf" or "snk". All sets are equal, so the
/// first is as good as any.
QString traceFile(const QString &fileName, const QString &trace);
