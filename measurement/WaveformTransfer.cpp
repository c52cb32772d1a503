#include "measurement/WaveformTransfer.h"

#include "instrument/InstrumentIo.h"
#include "instrument/NumberText.h"
#include "measurement/TransferFile.h"

#include <array>
#include <cstring>
#include <optional>

namespace {

/// Room for the terminator that follows the block's data.
constexpr ViUInt32 terminatorRoom = 10;

/// Read the header of a definite-length block: '#', a digit n, n digits. Returns the length of the
/// data in bytes, which is the number that came of those digits; 0 when none did.
std::optional<ViUInt32> readBlockHeader(ViSession session)
{
    std::array<unsigned char, 100> buffer{};
    ViUInt32 count = 0;
    if (iaRead(session, buffer.data(), 2, &count) < 0 || count < 2 || buffer[0] != '#') {
        return std::nullopt;
    }
    // Other characters than digits ask for as little and as much as there is room for.
    const int digits = qBound(0, buffer[1] - '0', static_cast<int>(buffer.size()) - 1);
    count = 0;
    if (iaRead(session, buffer.data(), static_cast<ViUInt32>(digits), &count) < 0) {
        return std::nullopt;
    }
    buffer.at(qMin(count, static_cast<ViUInt32>(digits))) = '\0';
    return static_cast<ViUInt32>(
        qMax(0, leadingInteger(reinterpret_cast<const char *>(buffer.data()))));
}

} // namespace

bool queryTrace(ViSession session, const QString &command, QVector<double> *trace)
{
    return iaPrintf(session, command) == VI_SUCCESS ? readTrace(session, trace) : true;
}

bool readTrace(ViSession session, QVector<double> *trace)
{
    const std::optional<ViUInt32> length = readBlockHeader(session);
    if (!length) {
        return false;
    }

    // viReadToFile() takes a block of any length in one call, whatever is in its bytes.
    TransferFile file;
    if (file.name().isEmpty() ||
        iaReadToFile(session, file.name(), *length + terminatorRoom, nullptr) < 0) {
        return false;
    }

    const QByteArray bytes = file.contents();
    const int samples =
        static_cast<int>(qMin(*length, static_cast<ViUInt32>(bytes.size())) / sizeof(float));
    trace->resize(samples);
    double *output = trace->data();
    for (int i = 0; i < samples; ++i) {
        float value = 0.0F;
        std::memcpy(&value, bytes.constData() + static_cast<std::size_t>(i) * sizeof value,
                    sizeof value);
        output[i] = value;
    }
    return true;
}
