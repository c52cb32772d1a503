#pragma once

#include "analysis/Flags.h"

#include <QDateTime>
#include <QStringList>

/// A saved series, and what its files tell. The traces are not kept: loadRecord() reads them.
struct Series
{
    QString fileName;
    QDateTime time; ///< local; invalid when the file's name does not tell
    SeriesResults results;
    bool hasReadTraces = false; ///< else the next two do not tell anything yet
    int samples = 0;            ///< of the last record; 0 without one
    Recognition oscilloscope;
    SeriesFlags flags;

    [[nodiscard]] int count() const { return results[SourceToRf].values.size(); }
};

/// Open a series by its results file alone, which is quick. Returns false and a reason as
/// readResults() does.
bool openResults(const QString &fileName, Series *series, QString *reason);

/// Read the traces of a series, recognise the oscilloscope type by them, and flag the delays anew.
/// Where a trace is missing or broken, the type remains unknown, and the remark says why.
void addTraces(Series *series);

/// Open a series with its traces. Returns false and a reason as readResults() does.
bool openSeries(const QString &fileName, Series *series, QString *reason);

/// Series that were asked for, and a sentence for each file that is none.
struct LoadedSeries
{
    QVector<Series> series;
    QStringList problems;
};

/// Open series with their traces; a folder stands for all in it, oldest first.
LoadedSeries loadSeries(const QStringList &filesAndFolders);

/// Load the traces of a series' last record. Returns false and a sentence when they cannot be read
/// or differ in length; the record then holds those traces that can be read.
bool loadRecord(const QString &fileName, Record *record, QString *reason);

/// Count the values of a series that have flags.
int flaggedCount(const Series &series);

/// Whether an engineer must hear something before using the delays: there are flags, or the traces
/// were read and do not tell the oscilloscope type.
bool isDoubtful(const Series &series);

/// Name a series for people: its label, if the file was renamed to have one, and its time; where
/// there is neither, its file.
QString seriesName(const Series &series);

/// Name the series of a selection; where names would be equal, by their folders and files.
QStringList seriesNames(const QVector<Series> &selection);

/// Returns the least difference between two delays of a series, in milliseconds: the time between
/// two samples; the usual 0.1 while the oscilloscope type is not known, and for HDMI, which the
/// video analyzer measures.
double delayStep(const Series &series, DelayKind kind);

/// Select the finite values of a delay, in milliseconds, all or only those without flags. Of HDMI
/// there is none where no video analyzer took part.
QVector<double> selectValues(const Series &series, DelayKind kind, bool withFlagged);
