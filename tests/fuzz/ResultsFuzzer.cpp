// Results files with whatever in them: what can be read of them, and what becomes of that.
// Input: the file; or the numbers of a series, and what is changed in its file.

#include "analysis/Csv.h"
#include "analysis/SeriesFiles.h"
#include "analysis/Summary.h"
#include "measurement/TraceFile.h"
#include "Require.h"

#include <QTemporaryDir>

#include <array>
#include <fuzzer/FuzzedDataProvider.h>
#include <numeric>

namespace {

/// Write the results with their true means.
bool writeTrue(const QString &name, SeriesResults results)
{
    for (DelaySeries *delay : {&results.sourceToRf, &results.sourceToHdmi, &results.sourceToSink}) {
        delay->mean =
            std::accumulate(delay->values.begin(), delay->values.end(), 0.0) / delay->values.size();
    }
    return writeResults(name, results);
}

QByteArray fileOf(FuzzedDataProvider *input, const QString &name)
{
    if (input->ConsumeBool()) {
        return QByteArray::fromStdString(input->ConsumeRemainingBytesAsString());
    }
    QVector<QPair<quint16, char>> changes(input->ConsumeIntegralInRange(0, 3));
    for (auto &[place, byte] : changes) {
        place = input->ConsumeIntegral<quint16>();
        byte = input->ConsumeIntegral<char>();
    }
    constexpr std::array<double, 6> usual = {45.1, 120.5, 0.0, -230.0, 500.1, 600.1};
    SeriesResults results;
    while (input->remaining_bytes() > 0) {
        for (DelaySeries *delay :
             {&results.sourceToRf, &results.sourceToHdmi, &results.sourceToSink}) {
            double value = input->PickValueInArray(usual);
            if (input->ConsumeBool()) {
                const std::vector<char> bytes = input->ConsumeBytes<char>(sizeof value);
                std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char *>(&value));
            }
            delay->values += value;
        }
    }
    require(writeTrue(name, results), "a file");
    QByteArray text = contents(name);
    for (const auto &[place, byte] : qAsConst(changes)) {
        text[place % text.size()] = byte;
    }
    return text;
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir directory;
    const QString name = directory.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
    FuzzedDataProvider input(data, size);
    const QByteArray text = fileOf(&input, name);
    require(write(name, text), "a file");
    for (const char *trace : {"src", "rf", "snk"}) { // the end of the file is a record, too
        require(write(traceFile(name, trace), text.right(800)), "a trace");
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
        require(valuesOf(series.results, kind).size() == series.count() &&
                    series.flagsOf(kind).size() == series.count() &&
                    selectValues(series, kind, false).size() <= series.count(),
                "as many values as measurements");
    }
    require(csvRows(series).count('\n') >= series.count(), "a row for each measurement");
    require(summarise(series).contains("Source to sink"), "a line for each delay");

    // What the program writes can be read, and comes back the same.
    SeriesResults again;
    require(writeTrue(name, series.results), "a file");
    const QByteArray written = contents(name);
    require(readResults(name, &again, &reason), "a file that can be read");
    require(writeTrue(name, again) && contents(name) == written, "the same again");
    return 0;
}
