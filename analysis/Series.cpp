#include "analysis/Series.h"

#include "analysis/DelayText.h"
#include "analysis/SeriesFiles.h"
#include "measurement/Record.h"
#include "measurement/TraceFile.h"

#include <QDir>
#include <QFileInfo>
#include <QLocale>

#include <cmath>

bool openResults(const QString &fileName, Series *series, QString *reason)
{
    Series opened;
    if (!readResults(fileName, &opened.results, reason)) {
        return false;
    }
    opened.fileName = fileName;
    opened.time = seriesTime(fileName);
    opened.flags = flagDelays(opened.results, opened.oscilloscope);
    *series = opened;
    return true;
}

void addTraces(Series *series)
{
    Record record;
    Recognition recognition;
    if (loadRecord(series->fileName, &record, &recognition.remark)) {
        recognition = recogniseType(record, series->results);
    }
    series->hasReadTraces = true;
    series->samples = record.samples;
    series->oscilloscope = recognition;
    series->flags = flagDelays(series->results, series->oscilloscope);
}

LoadedSeries loadSeries(const QStringList &filesAndFolders)
{
    LoadedSeries loaded;
    QStringList files;
    for (const QString &name : filesAndFolders) {
        if (!QFileInfo(name).isDir()) {
            files += name;
            continue;
        }
        const QStringList inside = seriesIn(name);
        if (inside.isEmpty()) {
            loaded.problems += name + " is a folder without results files.";
        }
        files += inside;
    }
    for (const QString &file : qAsConst(files)) {
        Series series;
        QString reason;
        if (openResults(file, &series, &reason)) {
            addTraces(&series);
            loaded.series += series;
        } else {
            loaded.problems += file + ' ' + reason + '.';
        }
    }
    return loaded;
}

bool loadRecord(const QString &fileName, Record *record, QString *problem)
{
    *record = {};
    problem->clear();
    // When several are missing, the problem names the source's, which comes last.
    for (const auto &[name, trace] : {std::pair("snk", &record->sink), std::pair("rf", &record->rf),
                                      std::pair("src", &record->source)}) {
        const QFileInfo file(traceFile(fileName, name));
        int count = 0;
        // Reading something else than a file might never end.
        if (!file.isFile() || loadTrace(file.filePath(), trace, &count) != 0) {
            *problem = QString("The trace %1 cannot be read.").arg(file.fileName());
        } else if (file.size() % static_cast<qint64>(sizeof(double)) != 0) {
            *problem = QString("The trace %1 is broken: %2 bytes are no whole number of samples.")
                           .arg(file.fileName(), QString::number(file.size()));
        }
    }
    record->samples = record->source.size();
    if (problem->isEmpty() &&
        (record->rf.size() != record->samples || record->sink.size() != record->samples)) {
        *problem = QString("The traces are broken: source, RF and sink have %1, %2 and %3 samples.")
                       .arg(record->source.size())
                       .arg(record->rf.size())
                       .arg(record->sink.size());
    }
    return problem->isEmpty();
}

int flaggedCount(const Series &series)
{
    int count = 0;
    for (const QVector<Flags> &flags : series.flags) {
        count += flags.size() - flags.count(Flags());
    }
    return count;
}

bool isDoubtful(const Series &series)
{
    return !series.oscilloscope.type || flaggedCount(series) > 0;
}

QString seriesName(const Series &series)
{
    if (!series.time.isValid()) {
        return QFileInfo(series.fileName).fileName();
    }
    // Series may share a label, so the time follows it. Some locales have other digits.
    const QString time = QLocale::c().toString(series.time, "yyyy-MM-dd hh:mm:ss");
    const QString label = seriesLabel(series.fileName);
    return label.isEmpty() ? time : QString("%1 (%2)").arg(label, time);
}

QStringList seriesNames(const QVector<Series> &selection)
{
    QStringList names;
    for (const Series &series : selection) {
        names += seriesName(series);
    }
    const QStringList given = names;
    for (int i = 0; i < names.size(); ++i) {
        if (given.count(given[i]) > 1) {
            const QFileInfo file(selection[i].fileName);
            names[i] = file.absoluteDir().dirName() + '/' + file.fileName();
        }
    }
    return names;
}

double delayStep(const Series &series, DelayKind kind)
{
    constexpr double milliseconds = 1000.0;
    if (kind == SourceToHdmi || !series.oscilloscope.type || series.samples < 2) {
        return usualStep;
    }
    return recordSpan(*series.oscilloscope.type) / (series.samples - 1) * milliseconds;
}

QVector<double> selectValues(const Series &series, DelayKind kind, Select wanted)
{
    const QVector<double> &values = series.results[kind].values;
    const QVector<Flags> &flags = series.flags[kind];
    QVector<double> selected;
    if (!isMeasured(series.results, kind)) {
        return selected;
    }
    selected.reserve(values.size());
    for (int i = 0; i < values.size(); ++i) {
        if (std::isfinite(values[i]) && (wanted == Select::All || !flags[i])) {
            selected += values[i];
        }
    }
    return selected;
}
