// Reading results files and traces with any content, and the texts made from them.

#include "analysis/Csv.h"
#include "analysis/SeriesFiles.h"
#include "analysis/Summary.h"
#include "measurement/TraceFile.h"
#include "tests/TestFiles.h"

#include <QTemporaryDir>

#undef NDEBUG
#include <cassert>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    const QString name = directory.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
    const QByteArray text(reinterpret_cast<const char *>(data), static_cast<int>(size));
    bool isWritten = write(name, text);
    for (const char *trace : {"src", "rf", "snk"}) { // the end of the file is a record, too
        isWritten &= write(traceFile(name, trace), text.right(qMin(800, text.size() / 8 * 8)));
    }
    assert(isWritten);

    const LoadedSeries loaded = loadSeries({name});
    assert(loaded.series.size() + loaded.problems.size() == 1);
    if (loaded.series.isEmpty()) {
        assert(loaded.problems[0].size() < name.size() + 200); // a short sentence
        return 0;
    }
    const Series &series = loaded.series[0];
    for (const DelayKind kind : delayKinds) {
        assert(series.results[kind].values.size() == series.count());
        assert(series.flags[kind].size() == series.count());
        assert(selectValues(series, kind, Select::Unflagged).size() <= series.count());
    }
    assert(csvText({series}).count('\n') > series.count());
    assert(summarise(series).contains("Source to sink"));
    return 0;
}
