// Results files with whatever in them: what can be read of them, and what becomes of that.

#include "analysis/Csv.h"
#include "analysis/SeriesFiles.h"
#include "analysis/Summary.h"
#include "measurement/TraceFile.h"
#include "Require.h"

#include <QTemporaryDir>

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    const QString name = directory.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    require(write(name, text), "a file");
    for (const char *trace : {"src", "rf", "snk"}) { // the end of the file is a record, too
        require(write(traceFile(name, trace), text.right(qMin(800, text.size() / 8 * 8))),
                "a trace");
    }

    Series series;
    QString reason;
    if (!openSeries(name, &series, &reason)) {
        require(!reason.isEmpty() && reason.size() < 200 && series.count() == 0,
                "a reason, and nothing else");
        return 0;
    }
    require(reason.isEmpty(), "no reason to complain");
    for (const DelayKind kind : delayKinds) {
        require(series.results[kind].values.size() == series.count() &&
                    series.flags[kind].size() == series.count() &&
                    selectValues(series, kind, false).size() <= series.count(),
                "as many values as measurements");
    }
    require(csvRows(series).count('\n') >= series.count(), "a row for each measurement");
    require(summarise(series).contains("Source to sink"), "a line for each delay");
    return 0;
}
