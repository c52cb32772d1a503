// What it costs to look at saved series, beside the floor: the cost of reading alone.

#include "analysis/Summary.h"
#include "measurement/TraceFile.h"
#include "viewer/PlotStyle.h"
#include "viewer/TraceData.h"

#include <QFile>
#include <QPixmap>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include <memory>

namespace {

/// Read the results of 100,000 measurements, and sum them up unless only the floor is wanted.
void results(benchmark::State &state, bool isSummedUp)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
    DelaySeries delays;
    for (int i = 0; i < 100000; ++i) {
        delays.values += 45.0 + i * 37 % 101 * 0.1001;
        delays.mean += delays.values.last() / 100000;
    }
    writeResults(name, {delays, delays, delays});
    for (auto _ : state) {
        if (isSummedUp) {
            benchmark::DoNotOptimize(summarise(loadSeries({name}).series[0]));
            continue;
        }
        QFile file(name);
        file.open(QIODevice::ReadOnly);
        for (const QByteArray &text : file.readAll().split(' ')) {
            benchmark::DoNotOptimize(text.toDouble());
        }
    }
}

/// Read a trace of a million samples, and draw it unless only the floor is wanted.
void trace(benchmark::State &state, bool isDrawn)
{
    const QTemporaryDir folder;
    const QString name = folder.filePath("src.bin");
    QVector<double> saved(1000000);
    for (int i = 0; i < saved.size(); ++i) {
        saved[i] = i % 101 * 1e-4 + (i < saved.size() / 2 ? 0.0 : 0.15);
    }
    saveTrace(name, saved, saved.size());
    for (auto _ : state) {
        QVector<double> trace;
        int count = 0;
        benchmark::DoNotOptimize(loadTrace(name, &trace, &count));
        if (isDrawn) {
            const std::unique_ptr<QwtPlot> plot(makePlot("Time / s", "Voltage / V"));
            auto *curve = new QwtPlotCurve;
            curve->setSamples(new TraceData(trace, -0.5, 1e-6, 4096));
            curve->attach(plot.get());
            plot->replot();
            benchmark::DoNotOptimize(plot->grab());
        }
    }
}

BENCHMARK_CAPTURE(results, summed up, true);
BENCHMARK_CAPTURE(results, floor, false)->Name("resultsFloor/summed up");
BENCHMARK_CAPTURE(trace, drawn, true);
BENCHMARK_CAPTURE(trace, floor, false)->Name("traceFloor/drawn");

} // namespace
