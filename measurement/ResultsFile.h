#pragma once

#include <QString>
#include <QVector>

#include <array>

/// The kinds of delay, in the order of results files.
enum DelayKind : std::size_t
{
    SourceToRf,
    SourceToHdmi,
    SourceToSink,
};

constexpr std::array<DelayKind, 3> delayKinds = {SourceToRf, SourceToHdmi, SourceToSink};

/// One T for each kind of delay.
template <typename T>
using EachDelay = std::array<T, delayKinds.size()>;

/// One delay over a series: a value for each measurement and their mean, in milliseconds.
struct DelaySeries
{
    QVector<double> values;
    double mean = 0.0;
};

/// The delays of a series.
using SeriesResults = EachDelay<DelaySeries>;

/// Read a file that writeResults() wrote. Numbers have the six digits that are in the file. Returns
/// false when it is not such a file; the results are then unchanged, and *reason is the rest of a
/// sentence about the file, such as "is a folder".
bool readResults(const QString &fileName, SeriesResults *results, QString *reason);

/// Write the results as UTF-8 text: for RF, HDMI and sink a line with the delays and a line with
/// their mean. Returns false when the file cannot be written whole; an earlier file is then
/// unchanged.
bool writeResults(const QString &fileName, const SeriesResults &results);
