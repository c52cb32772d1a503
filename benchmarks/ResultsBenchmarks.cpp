// What looking at saved series costs, beside the floors that nothing can go below.

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

constexpr int measurements = 100000;
constexpr int samples = 1000000;

/// Write the results of a series whose delays vary, and return the name of the file.
QString writeSeries(const QTemporaryDir &folder)
{
    QString name = folder.filePath("Orvanta2026-03-05_14-07-09_Results.txt");
    DelaySeries delays;
    for (int i = 0; i < measurements; ++i) {
        delays.values += 45.0 + i * 37 % 101 * 0.1001;
        delays.mean += delays.values.last() / measurements;
    }
    writeResults(name, {delays, delays, delays});
    return name;
}

void summary(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString name = writeSeries(folder);
    for (auto _ : state) {
        Series series;
        QString reason;
        openSeries(name, &series, &reason);
        benchmark::DoNotOptimize(summarise(series));
    }
}

/// Floor: read the bytes, and each number in them.
void bareNumbers(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString name = writeSeries(folder);
    for (auto _ : state) {
        QFile file(name);
        file.open(QIODevice::ReadOnly);
        double sum = 0.0;
        for (const QByteArray &text : file.readAll().split(' ')) {
            sum += text.toDouble();
        }
        benchmark::DoNotOptimize(sum);
    }
}

/// Write a trace with noise and an edge, and return the name of the file.
QString writeTrace(const QTemporaryDir &folder)
{
    QString name = folder.filePath("src.bin");
    QVector<double> trace(samples);
    for (int i = 0; i < samples; ++i) {
        trace[i] = i % 101 * 1e-4 + (i < samples / 2 ? 0.0 : 0.15);
    }
    saveTrace(name, trace, samples);
    return name;
}

/// Read a trace, and draw it unless only the floor is wanted.
void trace(benchmark::State &state, bool isDrawn)
{
    const QTemporaryDir folder;
    const QString name = writeTrace(folder);
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

BENCHMARK(summary)->Unit(benchmark::kMillisecond);
BENCHMARK(bareNumbers)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(trace, drawn, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(trace, read, false)->Unit(benchmark::kMillisecond);

} // namespace
