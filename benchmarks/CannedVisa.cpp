#include "CannedVisa.h"

#include "instrument/VisaBinding.h"

#include <QVector>

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// A trace at one level up to a sample, at another from there on, as the instrument sends it.
QByteArray block(float before, int edge, float after)
{
    QVector<float> samples(canned::recordLength, before);
    std::fill(samples.begin() + edge, samples.end(), after);
    const auto bytes = static_cast<int>(samples.size() * static_cast<int>(sizeof(float)));
    const QByteArray length = QByteArray::number(bytes);
    return '#' + QByteArray::number(length.size()) + length +
           QByteArray(reinterpret_cast<const char *>(samples.constData()), bytes) + '\n';
}

const QByteArray sourceBlock = block(0.005F, 10000, 0.15F);
const QByteArray rfBlock = block(-75.0F, 10800, -20.0F);
const QByteArray sinkBlock = block(0.01F, 12400, 0.12F);

// What is left to read of the last answer.
const char *unread = nullptr;
std::size_t unreadSize = 0;

void answer(const char *bytes, std::size_t size)
{
    unread = bytes;
    unreadSize = size;
}

void answer(const QByteArray &bytes)
{
    answer(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

canned::Exchanges *record = nullptr; ///< of the exchanges, while one is being made

ViStatus write(ViSession /*session*/, const ViByte *buffer, ViUInt32 count,
               ViUInt32 * /*returnedCount*/)
{
    const auto *command = reinterpret_cast<const char *>(buffer);
    if (record != nullptr) {
        record->append(canned::Exchange{QByteArray(command, static_cast<int>(count)), {}});
    }
    const auto startsWith = [&](const char *text) {
        return count >= std::strlen(text) && std::memcmp(command, text, std::strlen(text)) == 0;
    };
    if (startsWith("CHAN1:DATA?")) {
        answer(sourceBlock);
    } else if (startsWith("CHAN2:DATA?")) {
        answer(sinkBlock);
    } else if (startsWith("CHAN3:DATA?") || startsWith("TRAC? ")) {
        answer(rfBlock);
    } else {
        answer("1\n", 2);
    }
    return VI_SUCCESS;
}

std::size_t take(ViUInt32 count)
{
    return std::min<std::size_t>(count, unreadSize);
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

ViStatus read(ViSession /*session*/, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    if (record != nullptr) {
        record->last().reads.append(count);
    }
    const std::size_t size = take(count);
    std::memcpy(buffer, unread, size);
    return drop(size, returnedCount);
}

ViStatus readToFile(ViSession /*session*/, const ViChar *fileName, ViUInt32 count,
                    ViUInt32 *returnedCount)
{
    const int file = ::open(fileName, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (file < 0) {
        return VI_ERROR_FILE_ACCESS;
    }
    const std::size_t size = take(count);
    const bool written = ::write(file, unread, size) == static_cast<ssize_t>(size);
    ::close(file);
    return written ? drop(size, returnedCount) : VI_ERROR_FILE_IO;
}

} // namespace

void canned::bind()
{
    p_viWrite = write;
    p_viRead = read;
    p_viReadToFile = readToFile;
}

SeriesSettings canned::series(OscilloscopeType type)
{
    SeriesSettings settings;
    settings.oscilloscope = 1;
    settings.spectrumAnalyzer = 2;
    settings.videoAnalyzer = 3;
    settings.oscilloscopeType = type;
    settings.rfFromOscilloscope = type == OscilloscopeType::Kvx;
    settings.measureHdmi = true;
    settings.count = 1;
    return settings;
}

canned::Exchanges canned::exchanges(OscilloscopeType type)
{
    Exchanges exchanges;
    Record traces;
    SeriesResults results;
    record = &exchanges;
    runSeries(series(type), &traces, &results);
    record = nullptr;
    const bool isWhole = traces.source.size() == recordLength && traces.rf.size() == recordLength &&
                         traces.sink.size() == recordLength && results.sourceToRf.mean > 0;
    return isWhole ? exchanges : Exchanges();
}
