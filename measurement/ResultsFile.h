#pragma once

#include <QString>
#include <QVector>

/// One delay over a series: a value for each measurement and their mean, in milliseconds.
struct DelaySeries
{
    QVector<double> values;
    double mean = 0.0;
};

/// The delays that a series found.
struct SeriesResults
{
    DelaySeries sourceToRf;
    DelaySeries sourceToHdmi;
    DelaySeries sourceToSink;
};

/// Read what writeResults() wrote. Returns false on what is not such a file, and a reason that
/// continues a sentence about the file, as "is a folder"; the results are then left alone. Numbers
/// come back with the six digits that were written.
bool readResults(const QString &fileName, SeriesResults *results, QString *reason);

/// Write the results as UTF-8 text: for RF, HDMI and sink a line with the delays and a line with
/// their mean. Returns false, and leaves no file, when it cannot be written whole.
bool writeResults(const QString &fileName, const SeriesResults &results);
