#include "analysis/Csv.h"

#include "analysis/DelayText.h"
#include "instrument/NumberText.h"

#include <QStringList>

namespace {

QString quoted(QString text)
{
    const bool isPlain = !text.contains(',') && !text.contains('"') && !text.contains('\n');
    return isPlain ? text : '"' + text.replace('"', "\"\"") + '"';
}

QString rowsOf(const Series &series)
{
    const QString file = quoted(series.fileName);
    const QString name = quoted(seriesName(series));
    QString rows;
    for (int i = 0; i < series.count(); ++i) {
        rows += file + ',' + QString::number(i + 1);
        for (const DelayKind kind : delayKinds) {
            rows += ',' + numberText(series.results[kind].values[i]);
        }
        rows += ',' + quoted(measurementFlags(series, i)) + ',' + name + '\n';
    }
    return rows;
}

} // namespace

QString csvText(const QVector<Series> &selection)
{
    QString text =
        "file,measurement,source_to_rf_ms,source_to_hdmi_ms,source_to_sink_ms,flags,series\n";
    for (const Series &series : selection) {
        text += rowsOf(series);
    }
    return text;
}

QString measurementFlags(const Series &series, int measurement)
{
    QStringList all;
    for (const DelayKind kind : delayKinds) {
        if (const Flags flags = series.flags[kind][measurement]) {
            all += delayName(kind) + ": " + flagReasons(flags);
        }
    }
    return all.join("; ");
}
