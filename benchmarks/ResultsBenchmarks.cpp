// What looking at saved series costs, beside the floors that nothing can go below.

#include "analysis/SeriesFiles.h"
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

#include <cstdlib>
#include <memory>
#include <numeric>

namespace {

constexpr int measurements = 100000;
constexpr int samples = 1000000;

/// The file of a series with delays like those of a link, no two in a row the same.
class ResultsOfSeries
{
public:
    ResultsOfSeries()
    {
        const auto delays = [](double typical) {
            DelaySeries series;
            for (int i = 0; i < measurements; ++i) {
                series.values += typical + i * 37 % 101 * 0.1001;
            }
            series.mean =
                std::accumulate(series.values.begin(), series.values.end(), 0.0) / measurements;
            return series;
        };
        writeResults(name, {delays(45.0), delays(95.0), delays(120.0)});
    }

    const QTemporaryDir directory;
    const QString name = directory.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
};

void summary(benchmark::State &state)
{
    const ResultsOfSeries file;
    for (auto _ : state) {
        Series series;
        QString reason;
        openSeries(file.name, &series, &reason);
        benchmark::DoNotOptimize(summarise(series));
    }
}

/// Floor: read the bytes, and each number of them.
void bareNumbers(benchmark::State &state)
{
    const ResultsOfSeries results;
    for (auto _ : state) {
        QFile file(results.name);
        file.open(QIODevice::ReadOnly);
        const QByteArray text = file.readAll();
        double sum = 0.0;
        for (const char *place = text.constData(); *place != '\0';) {
            char *end = nullptr;
            sum += std::strtod(place, &end);
            place = end == place ? place + 1 : end;
        }
        benchmark::DoNotOptimize(sum);
    }
}

/// A trace with noise and an edge in its file.
class TraceOfRecord
{
public:
    TraceOfRecord()
    {
        QVector<double> trace(samples);
        for (int i = 0; i < samples; ++i) {
            trace[i] = i % 101 * 1e-4 + (i < samples / 2 ? 0.0 : 0.15);
        }
        saveTrace(name, trace, samples);
    }

    const QTemporaryDir directory;
    const QString name = directory.filePath("src.bin");
};

void traceDrawn(benchmark::State &state)
{
    const TraceOfRecord file;
    for (auto _ : state) {
        QVector<double> trace;
        int count = 0;
        loadTrace(file.name, &trace, &count);
        const std::unique_ptr<QwtPlot> plot(makePlot("Time / s", "Voltage / V"));
        auto *curve = new QwtPlotCurve;
        curve->setPen(Qt::black, dataWidth);
        curve->setSamples(new TraceData(trace, -0.5, 1e-6, 4096));
        curve->attach(plot.get());
        plot->replot();
        benchmark::DoNotOptimize(plot->grab());
    }
}

/// Floor: read the trace's file.
void traceRead(benchmark::State &state)
{
    const TraceOfRecord file;
    for (auto _ : state) {
        QVector<double> trace;
        int count = 0;
        benchmark::DoNotOptimize(loadTrace(file.name, &trace, &count));
    }
}

BENCHMARK(summary)->Unit(benchmark::kMillisecond);
BENCHMARK(bareNumbers)->Unit(benchmark::kMillisecond);
BENCHMARK(traceDrawn)->Unit(benchmark::kMillisecond);
BENCHMARK(traceRead)->Unit(benchmark::kMillisecond);

} // namespace
