#pragma once

#include "analysis/Flags.h"

#include <QDateTime>

/// A saved series, and what its files tell. Traces are not kept: loadRecord() has them.
struct Series
{
    QString fileName;
    QDateTime time; ///< local; invalid when the file's name does not tell
    SeriesResults results;
    int samples = 0; ///< of the last record; 0 without one
    Recognition oscilloscope;
    SeriesFlags flags;

    /// The flags of one delay.
    [[nodiscard]] const QVector<Flags> &flagsOf(DelayKind kind) const
    {
        return flags[static_cast<std::size_t>(kind)];
    }
    [[nodiscard]] int count() const { return results.sourceToRf.values.size(); }
};

/// Open a series by its results file. Returns false and a reason as readResults() does; a series
/// without its traces is opened, its oscilloscope type remains unknown.
bool openSeries(const QString &fileName, Series *series, QString *reason);

/// Load the last record of a series: traces and, if its type is known, instants. Returns false and
/// a sentence when a trace cannot be read.
bool loadRecord(const QString &fileName, Record *record, QString *reason);

/// Count the values of a series that have flags.
int flaggedCount(const Series &series);

/// Whether an engineer must hear something before using the delays.
bool isDoubtful(const Series &series);

/// Name a series for people: its time or, where there is none, its file.
QString seriesName(const Series &series);

/// Find the time between two samples, in milliseconds, of which all RF and sink delays are
/// multiples; 0 when the oscilloscope type is not known.
double samplingInterval(const Series &series);

/// Select the finite values of a delay, in milliseconds, all or only those without flags. Of HDMI
/// there is none where no video analyzer took part.
QVector<double> selectValues(const Series &series, DelayKind kind, bool withFlagged);
