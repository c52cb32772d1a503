#include "analysis/Series.h"

#include "analysis/SeriesFiles.h"
#include "measurement/Record.h"
#include "measurement/TraceFile.h"

#include <QFileInfo>

#include <cmath>

bool openSeries(const QString &fileName, Series *series, QString *reason)
{
    Series opened;
    if (!readResults(fileName, &opened.results, reason)) {
        return false;
    }
    opened.fileName = fileName;
    opened.time = seriesTime(fileName);
    Record record;
    if (loadRecord(fileName, &record, &opened.oscilloscope.remark)) {
        opened.oscilloscope = recogniseType(record, opened.results);
    }
    opened.samples = record.samples;
    opened.flags = flagDelays(opened.results, opened.samples, opened.oscilloscope);
    *series = opened;
    return true;
}

bool loadRecord(const QString &fileName, Record *record, QString *reason)
{
    Record loaded;
    for (const auto &[name, trace] : {std::pair("src", &loaded.source), std::pair("rf", &loaded.rf),
                                      std::pair("snk", &loaded.sink)}) {
        const QString file = traceFile(fileName, name);
        int count = 0;
        // Where a folder has the name, opening it fails, too.
        if (loadTrace(file, trace, &count) != 0) {
            *reason = QString("The trace %1 cannot be read.").arg(QFileInfo(file).fileName());
            return false;
        }
    }
    loaded.samples = loaded.source.size();
    *record = loaded;
    return true;
}

int flaggedCount(const Series &series)
{
    int count = 0;
    for (const QVector<Flags> &flags : series.flags) {
        count += static_cast<int>(
            std::count_if(flags.begin(), flags.end(), [](Flags value) { return value != 0; }));
    }
    return count;
}

bool isDoubtful(const Series &series)
{
    return series.oscilloscope.contradicts || flaggedCount(series) > 0;
}

QString seriesName(const Series &series)
{
    return series.time.isValid() ? series.time.toString("yyyy-MM-dd hh:mm:ss")
                                 : QFileInfo(series.fileName).fileName();
}

double samplingInterval(const Series &series)
{
    constexpr double milliseconds = 1000.0;
    if (!series.oscilloscope.type || series.samples < 2) {
        return 0.0;
    }
    return recordSpan(*series.oscilloscope.type) / (series.samples - 1) * milliseconds;
}

QVector<double> selectValues(const Series &series, DelayKind kind, bool withFlagged)
{
    const QVector<double> &values = valuesOf(series.results, kind);
    const QVector<Flags> &flags = series.flagsOf(kind);
    QVector<double> selected;
    if (!isMeasured(series.results, kind)) {
        return selected;
    }
    selected.reserve(values.size());
    for (int i = 0; i < values.size(); ++i) {
        if (std::isfinite(values[i]) && (withFlagged || !flags[i])) {
            selected += values[i];
        }
    }
    return selected;
}
