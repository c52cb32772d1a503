// Reading results files and traces with any content, and the texts made from them.

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
    require(write(name, text), "the results file can be written");
    for (const char *trace : {"src", "rf", "snk"}) { // the end of the file is a record, too
        require(write(traceFile(name, trace), text.right(qMin(800, text.size() / 8 * 8))),
                "the trace can be written");
    }

    const LoadedSeries loaded = loadSeries({name});
    require(loaded.series.size() + loaded.problems.size() == 1, "a file is a series or a problem");
    if (loaded.series.isEmpty()) {
        require(loaded.problems[0].size() < name.size() + 200, "a problem is a short sentence");
        return 0;
    }
    const Series &series = loaded.series[0];
    for (const DelayKind kind : delayKinds) {
        require(series.results[kind].values.size() == series.count() &&
                    series.flags[kind].size() == series.count() &&
                    selectValues(series, kind, Select::Unflagged).size() <= series.count(),
                "as many values as measurements");
    }
    require(csvText({series}).count('\n') > series.count(), "a row for each measurement");
    require(summarise(series).contains("Source to sink"), "a line for each delay");
    return 0;
}
