// What a measurement costs, beside its floor: the cost of the input and output alone.

#include "benchmarks/CannedVisa.h"
#include "measurement/MeasurementRun.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr int recordLength = 20000; // samples

/// Returns a trace with an edge, as an instrument sends it.
QByteArray block(float before, int edge, float after)
{
    QVector<float> samples(recordLength, before);
    std::fill(samples.begin() + edge, samples.end(), after);
    return "#580000" + QByteArray(reinterpret_cast<const char *>(samples.constData()), 80000) +
           '\n';
}

QByteArray answerTo(const QByteArray &command)
{
    static const QByteArray source = block(0.005F, 10000, 0.15F);
    static const QByteArray rf = block(-75.0F, 10800, -20.0F);
    static const QByteArray sink = block(0.01F, 12400, 0.12F);
    if (command.startsWith("CHAN1:DATA")) {
        return source;
    }
    if (command.startsWith("CHAN2:DATA")) {
        return sink;
    }
    return command.startsWith("CHAN3:DATA") || command.startsWith("TRAC? ") ? rf : "1\n";
}

/// Take one measurement with all three instruments.
void measure(OscilloscopeType type, Record *record)
{
    SeriesSettings settings;
    settings.oscilloscopeType = type;
    settings.rfFromOscilloscope = type == OscilloscopeType::Kvx;
    settings.measureHdmi = true;
    settings.count = 1;
    SeriesResults results;
    runSeries(settings, record, &results);
}

void measurement(benchmark::State &state, OscilloscopeType type)
{
    const CannedVisa visa(answerTo);
    Record record;
    for (auto _ : state) {
        record.time.resize(0); // keeps its memory, which a series needs once
        measure(type, &record);
    }
    if (record.rf.size() != recordLength || record.instants.sink <= record.instants.source) {
        state.SkipWithError("the traces did not arrive");
    }
}

/// The floor of a measurement: its commands and their answers, each block through a file in memory.
void measurementFloor(benchmark::State &state, OscilloscopeType type)
{
    QByteArrayList commands;
    const CannedVisa noting([&](const QByteArray &command) {
        commands << QByteArray(command.constData(), command.size());
        return answerTo(command);
    });
    Record record;
    measure(type, &record);

    const CannedVisa visa(answerTo);
    std::vector<ViByte> buffer(80000);
    for (auto _ : state) {
        for (const QByteArray &command : qAsConst(commands)) {
            p_viWrite(1, reinterpret_cast<const ViByte *>(command.constData()),
                      static_cast<ViUInt32>(command.size()), nullptr);
            if (p_viRead(1, buffer.data(), 7, nullptr) == VI_SUCCESS) {
                continue; // not the header of a block
            }
            const int memory = memfd_create("floor", MFD_CLOEXEC);
            const QByteArray name = "/proc/self/fd/" + QByteArray::number(memory);
            p_viReadToFile(1, name, 80010, nullptr);
            benchmark::DoNotOptimize(::pread(memory, buffer.data(), buffer.size(), 0));
            ::close(memory);
        }
    }
}

BENCHMARK_CAPTURE(measurement, KVx, OscilloscopeType::Kvx);
BENCHMARK_CAPTURE(measurementFloor, KVx, OscilloscopeType::Kvx);
BENCHMARK_CAPTURE(measurement, LPA4004, OscilloscopeType::Lpa4004);
BENCHMARK_CAPTURE(measurementFloor, LPA4004, OscilloscopeType::Lpa4004);

} // namespace

int main(int argc, char *argv[])
{
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
