// What a measurement costs, beside a floor that nothing can go below.

#include "app/Globals.h"
#include "app/graph/Graph.h"
#include "instrument/VisaBinding.h"
#include "measurement/MeasurementRun.h"

#include <QApplication>
#include <QPixmap>

#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

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
const QByteArray shortAnswer = "1\n";

// What is left to read of the last answer.
const char *unread = nullptr;
std::size_t unreadSize = 0;

/// A call of a measurement: a command, or else the number of bytes that a read asks for.
struct Call
{
    QByteArray command;
    ViUInt32 count = 0;
};
QVector<Call> calls;
bool isNoting = true;

// A VISA library whose answers lie ready in memory. It costs as little as one can, so that the
// program's own cost shows.

ViStatus writeCommand(ViSession /*session*/, const ViByte *buffer, ViUInt32 count,
                      ViUInt32 * /*returnedCount*/)
{
    const auto *command = reinterpret_cast<const char *>(buffer);
    if (isNoting) {
        calls << Call{QByteArray(command, static_cast<int>(count)), 0};
    }
    const auto starts = [=](const char *text) {
        return std::strncmp(command, text, std::strlen(text)) == 0;
    };
    const QByteArray &answer = starts("CHAN1:DATA")                       ? sourceBlock
                               : starts("CHAN2:DATA")                     ? sinkBlock
                               : starts("CHAN3:DATA") || starts("TRAC? ") ? rfBlock
                                                                          : shortAnswer;
    unread = answer.constData();
    unreadSize = static_cast<std::size_t>(answer.size());
    return VI_SUCCESS;
}

ViStatus drop(std::size_t size, ViUInt32 *returnedCount)
{
    unread += size;
    unreadSize -= size;
    if (returnedCount != nullptr) {
        *returnedCount = static_cast<ViUInt32>(size);
    }
    return unreadSize == 0 ? VI_SUCCESS : VI_SUCCESS_MAX_CNT;
}

ViStatus readAnswer(ViSession /*session*/, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    if (isNoting) {
        calls << Call{{}, count};
    }
    const std::size_t size = std::min<std::size_t>(count, unreadSize);
    std::memcpy(buffer, unread, size);
    return drop(size, returnedCount);
}

ViStatus readToFile(ViSession /*session*/, const ViChar *fileName, ViUInt32 count,
                    ViUInt32 *returnedCount)
{
    const std::size_t size = std::min<std::size_t>(count, unreadSize);
    const int file = ::open(fileName, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    const bool isWritten = ::write(file, unread, size) == static_cast<ssize_t>(size);
    ::close(file);
    return isWritten ? drop(size, returnedCount) : VI_ERROR_FILE_IO;
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

/// Floor: every VISA call of a measurement, and for each trace a file written and read back.
void measurementFloor(benchmark::State &state)
{
    calls.clear();
    isNoting = true;
    measure(OscilloscopeType(state.range(0)));
    isNoting = false;
    std::vector<ViByte> buffer(80000);
    for (auto _ : state) {
        for (const Call &call : qAsConst(calls)) {
            if (call.command.isEmpty()) {
                p_viRead(1, buffer.data(), call.count, nullptr);
            } else {
                p_viWrite(1, reinterpret_cast<const ViByte *>(call.command.constData()),
                          static_cast<ViUInt32>(call.command.size()), nullptr);
            }
        }
        for (int trace = 0; trace < 3; ++trace) {
            const int memory = memfd_create("floor", MFD_CLOEXEC);
            const QByteArray name = "/proc/self/fd/" + QByteArray::number(memory);
            const int output = ::open(name, O_WRONLY | O_TRUNC | O_CLOEXEC);
            benchmark::DoNotOptimize(::write(output, buffer.data(), buffer.size()));
            ::close(output);
            const int input = ::open(name, O_RDONLY | O_CLOEXEC);
            benchmark::DoNotOptimize(::read(input, buffer.data(), buffer.size()));
            ::close(input);
            ::close(memory);
        }
    }
}

void graph(benchmark::State &state)
{
    const Record record = measure(OscilloscopeType::Kvx);
    d1_src = record.source;
    d2_rf = record.rf;
    d3_snk = record.sink;
    t = record.time;
    for (auto _ : state) {
        Graph dialog(nullptr);
        benchmark::DoNotOptimize(dialog.grab());
    }
}

BENCHMARK(measurement)->Arg(0)->Arg(1);
BENCHMARK(measurementFloor)->Arg(0)->Arg(1);
BENCHMARK(graph)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    p_viWrite = writeCommand;
    p_viRead = readAnswer;
    p_viReadToFile = readToFile;
    for (const auto type : {OscilloscopeType::Kvx, OscilloscopeType::Lpa4004}) {
        const Record record = measure(type);
        if (record.rf.size() != recordLength || record.instants.sink <= record.instants.source) {
            std::fputs("The traces of a measurement did not arrive.\n", stderr);
            return 1;
        }
    }
    isNoting = false;
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
