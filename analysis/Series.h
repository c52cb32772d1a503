#pragma once

#include "analysis/Flags.h"

#include <QDateTime>
#include <QStringList>

/// A saved series. Its traces are not kept: loadRecord() reads them.
struct Series
{
    QString fileName;
    QDateTime time; ///< local; invalid when the file's name has none
    SeriesResults results;
    bool hasReadTraces = false; ///< until then, samples and oscilloscope are not set
    int samples = 0;            ///< of the last record; 0 without one
    Recognition oscilloscope;
    SeriesFlags flags;

    [[nodiscard]] int count() const { return results[SourceToRf].values.size(); }
};

/// Open a series by its results file alone, which is quick. Returns false and a reason as
/// readResults() does.
bool openResults(const QString &fileName, Series *series, QString *reason);

/// Read the traces of a series, recognise the oscilloscope type by them, and flag the delays
/// again. When a trace is missing or broken, the type remains unknown and the remark says why.
void addTraces(Series *series);

/// The series that could be opened, and a sentence about each file that could not.
struct LoadedSeries
{
    QVector<Series> series;
    QStringList problems;
};

/// Open series with their traces. A folder stands for all series in it, oldest first.
LoadedSeries loadSeries(const QStringList &filesAndFolders);

/// Load the traces of a series' last record. Returns false and a sentence when they cannot be read
/// or differ in length; the record then holds those traces that can be read.
bool loadRecord(const QString &fileName, Record *record, QString *problem);

/// Returns the number of values that have flags.
int flaggedCount(const Series &series);

/// Returns whether an engineer must look at a series before using its delays: values have flags, or
/// the oscilloscope type is not known.
bool isDoubtful(const Series &series);

/// Returns the name of a series for people: its time, after the label if its file has one. A file
/// without a time gives its own name.
QString seriesName(const Series &series);

/// Returns the names of the series in a selection. Series whose names would be equal are named by
/// their folders and files.
QStringList seriesNames(const QVector<Series> &selection);

/// Returns the least difference between two delays of a series, in milliseconds: the time between
/// two samples. It is `usualStep` while the oscilloscope type is not known, and for HDMI, which the
/// video analyzer measures.
double delayStep(const Series &series, DelayKind kind);

enum class Select
{
    All,
    Unflagged,
};

/// Returns finite values of a delay, in milliseconds. There are none for HDMI when no video
/// analyzer took part.
QVector<double> selectValues(const Series &series, DelayKind kind, Select wanted);
