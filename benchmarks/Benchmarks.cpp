// What a measurement costs, beside a floor that nothing can go below.

#include "benchmarks/CannedVisa.h"
#include "measurement/MeasurementRun.h"

#include <QApplication>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <sys/mman.h>

namespace {

constexpr int recordLength = 20000; // samples

/// A trace at one level up to a sample, at another from there on, as an instrument sends it.
QByteArray block(float before, int edge, float after)
{
    QVector<float> samples(recordLength, before);
    std::fill(samples.begin() + edge, samples.end(), after);
    return "#580000" + QByteArray(reinterpret_cast<const char *>(samples.constData()), 80000) +
           '\n';
}

const QByteArray sourceBlock = block(0.005F, 10000, 0.15F);
const QByteArray rfBlock = block(-75.0F, 10800, -20.0F);
const QByteArray sinkBlock = block(0.01F, 12400, 0.12F);

QByteArrayList commands; // of a measurement, while they are noted
bool isNoting = false;

QByteArray answerTo(const QByteArray &command)
{
    if (isNoting) {
        commands << QByteArray(command.constData(), command.size());
    }
    if (command.startsWith("CHAN1:DATA")) {
        return sourceBlock;
    }
    if (command.startsWith("CHAN2:DATA")) {
        return sinkBlock;
    }
    return command.startsWith("CHAN3:DATA") || command.startsWith("TRAC? ") ? rfBlock : "1\n";
}

/// Take one measurement with all three instruments.
Record measure(OscilloscopeType type, Record record = {})
{
    SeriesSettings settings;
    settings.oscilloscopeType = type;
    settings.rfFromOscilloscope = type == OscilloscopeType::Kvx;
    settings.measureHdmi = true;
    settings.count = 1;
    SeriesResults results;
    runSeries(settings, &record, &results);
    return record;
}

void measurement(benchmark::State &state)
{
    Record record;
    for (auto _ : state) {
        record.time.resize(0); // keeps its memory, which a series needs once
        record = measure(OscilloscopeType(state.range(0)), std::move(record));
    }
}

/// Floor: every command of a measurement and its answer, blocks by a file that is read back.
void measurementFloor(benchmark::State &state)
{
    commands.clear();
    isNoting = true;
    measure(OscilloscopeType(state.range(0)));
    isNoting = false;
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

BENCHMARK(measurement)->Arg(0)->Arg(1);
BENCHMARK(measurementFloor)->Arg(0)->Arg(1);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    const CannedVisa visa(answerTo);
    for (const auto type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        const Record record = measure(type);
        if (record.rf.size() != recordLength || record.instants.sink <= record.instants.source) {
            std::fputs("The traces of a measurement did not arrive.\n", stderr);
            return 1;
        }
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
