// What a measurement costs, beside the floors that nothing can go below.

#include "CannedVisa.h"

#include "app/Globals.h"
#include "app/graph/Graph.h"
#include "app/MainWindow.h"
#include "instrument/VisaBinding.h"
#include "measurement/DelayComputation.h"
#include "measurement/Record.h"
#include "measurement/TraceFile.h"
#include "measurement/WaveformTransfer.h"

#include <QApplication>
#include <QPixmap>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <numeric>
#include <sys/mman.h>
#include <unistd.h>

namespace {

/// A record of the given number of samples with its three edges in the second half.
Record recordOf(int samples)
{
    Record record;
    const auto step = [samples](double from, int edge, double to) {
        QVector<double> trace(samples, from);
        std::fill(trace.begin() + edge, trace.end(), to);
        return trace;
    };
    record.source = step(0.005, samples / 2, 0.15);
    record.rf = step(0.0, samples / 20 * 11, 0.2);
    record.sink = step(0.01, samples / 5 * 3, 0.12);
    record.samples = samples;
    appendTimeAxis(samples, OscilloscopeType::Kvx, &record.time);
    return record;
}

QVector<double> recordPass(const Record &record)
{
    QVector<double> sums;
    for (const QVector<double> *trace : {&record.source, &record.rf, &record.sink}) {
        // Sums that do not wait for each other: memory is the limit, not the addition.
        std::array<double, 8> lanes{};
        const int whole = trace->size() - trace->size() % static_cast<int>(lanes.size());
        for (int i = 0; i < whole; i += static_cast<int>(lanes.size())) {
            for (std::size_t lane = 0; lane < lanes.size(); ++lane) {
                lanes[lane] += trace->constData()[i + static_cast<int>(lane)];
            }
        }
        sums << std::accumulate(lanes.begin(), lanes.end(), 0.0);
    }
    return sums;
}

void measurement(benchmark::State &state)
{
    const SeriesSettings settings = canned::series(OscilloscopeType(state.range(0)));
    Record record;
    SeriesResults results;
    for (auto _ : state) {
        record.time.resize(0); // keeps its memory, which a series needs once
        benchmark::DoNotOptimize(runSeries(settings, &record, &results));
    }
}

void transfer(benchmark::State &state)
{
    QVector<double> trace;
    for (auto _ : state) {
        benchmark::DoNotOptimize(queryTrace(1, "CHAN1:DATA?\n", &trace));
    }
}

void normalisation(benchmark::State &state)
{
    Record record = recordOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        normaliseEnvelope(&record.rf);
        benchmark::ClobberMemory();
    }
}

void delayComputation(benchmark::State &state)
{
    const auto samples = static_cast<int>(state.range(0));
    const Record record = recordOf(samples);
    for (auto _ : state) {
        benchmark::DoNotOptimize(computeDelays(samples, record.source, record.rf, record.sink,
                                               record.time, OscilloscopeType::Kvx));
    }
}

void timeAxis(benchmark::State &state)
{
    const auto samples = static_cast<int>(state.range(0));
    QVector<double> axis;
    for (auto _ : state) {
        axis.resize(0);
        appendTimeAxis(samples, OscilloscopeType::Kvx, &axis);
        benchmark::ClobberMemory();
    }
}

void traceFiles(benchmark::State &state)
{
    const Record record = recordOf(canned::recordLength);
    const QTemporaryDir directory;
    for (auto _ : state) {
        saveTrace(directory.filePath("src.bin"), record.source, canned::recordLength);
        saveTrace(directory.filePath("rf.bin"), record.rf, canned::recordLength);
        saveTrace(directory.filePath("snk.bin"), record.sink, canned::recordLength);
    }
}

void graph(benchmark::State &state)
{
    const Record record = recordOf(canned::recordLength);
    d1_src = record.source;
    d2_rf = record.rf;
    d3_snk = record.sink;
    t = record.time;
    for (auto _ : state) {
        Graph dialog(nullptr);
        benchmark::DoNotOptimize(dialog.grab());
    }
}

void mainWindow(benchmark::State &state)
{
    for (auto _ : state) {
        const MainWindow window; // binds the bench's library
        benchmark::DoNotOptimize(&window);
    }
    canned::bind();
}

/// Floor: every VISA call of a measurement but the files, with nothing between them.
void bareExchanges(benchmark::State &state)
{
    const canned::Exchanges exchanges = canned::exchanges(OscilloscopeType(state.range(0)));
    std::vector<ViByte> buffer(20000);
    for (auto _ : state) {
        for (const canned::Exchange &exchange : exchanges) {
            p_viWrite(1, reinterpret_cast<const ViByte *>(exchange.command.constData()),
                      static_cast<ViUInt32>(exchange.command.size()), nullptr);
            for (const ViUInt32 count : exchange.reads) {
                p_viRead(1, buffer.data(), count, nullptr);
            }
        }
        benchmark::ClobberMemory();
    }
}

/// Floor: write a block's bytes to a file like that of a transfer, and read them back.
void fileRoundTrip(benchmark::State &state)
{
    const QByteArray written(canned::recordLength * static_cast<int>(sizeof(float)), 'x');
    QByteArray read(written.size(), '\0');
    const auto size = static_cast<std::size_t>(written.size());
    for (auto _ : state) {
        const int memory = memfd_create("floor", MFD_CLOEXEC);
        const QByteArray name = "/proc/self/fd/" + QByteArray::number(memory);
        const int output = ::open(name, O_WRONLY | O_TRUNC | O_CLOEXEC);
        benchmark::DoNotOptimize(::write(output, written.constData(), size));
        ::close(output);
        const int input = ::open(name, O_RDONLY | O_CLOEXEC);
        benchmark::DoNotOptimize(::read(input, read.data(), size));
        ::close(input);
        ::close(memory);
    }
}

/// Floor: read the three traces once.
void onePass(benchmark::State &state)
{
    const Record record = recordOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(recordPass(record));
    }
}

BENCHMARK(measurement)->Arg(0)->Arg(1);
BENCHMARK(bareExchanges)->Arg(0)->Arg(1);
BENCHMARK(transfer);
BENCHMARK(fileRoundTrip);
BENCHMARK(normalisation)->RangeMultiplier(10)->Range(1000, 10000000)->Arg(20000);
BENCHMARK(delayComputation)->RangeMultiplier(10)->Range(1000, 10000000)->Arg(20000);
BENCHMARK(timeAxis)->RangeMultiplier(10)->Range(1000, 10000000)->Arg(20000);
BENCHMARK(onePass)->RangeMultiplier(10)->Range(1000, 10000000)->Arg(20000);
BENCHMARK(traceFiles);
BENCHMARK(graph)->Unit(benchmark::kMillisecond);
// Each window takes a resource manager of the bench, which has so many handles and no more.
BENCHMARK(mainWindow)->Unit(benchmark::kMillisecond)->Iterations(50);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home; // the window's settings
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    const QApplication application(argc, argv);
    setVisaLibraryPaths({BENCH_LIBRARY}); // for the window; everything else is bound by hand
    canned::bind();
    for (const auto type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        if (canned::exchanges(type).isEmpty()) {
            std::fputs("The traces of a measurement did not arrive.\n", stderr);
            return 1;
        }
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
