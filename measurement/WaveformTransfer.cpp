#include "measurement/WaveformTransfer.h"

#include "instrument/InstrumentIo.h"
#include "measurement/TransferFile.h"

#include <QFile>
#include <QScopeGuard>

#include <array>
#include <cstring>
#include <optional>

namespace {

/// Room for the terminator that follows the block's data.
constexpr ViUInt32 terminatorRoom = 10;

/// Read the header of a definite-length block: '#', a digit n, n digits. Returns the length of
/// the data in bytes, which nine digits keep below 10^9.
std::optional<ViUInt32> readBlockHeader(ViSession session)
{
    std::array<unsigned char, 9> buffer{};
    ViUInt32 count = 0;
    const auto isDigit = [](unsigned char c) { return c >= '0' && c <= '9'; };

    if (iaRead(session, buffer.data(), 2, &count) < 0 || count < 2 || buffer[0] != '#' ||
        !isDigit(buffer[1])) {
        return std::nullopt;
    }
    const ViUInt32 digits = buffer[1] - ViUInt32{'0'};
    count = 0;
    if (iaRead(session, buffer.data(), digits, &count) < 0 || count != digits) {
        return std::nullopt;
    }
    ViUInt32 length = 0;
    for (ViUInt32 i = 0; i < digits; ++i) {
        if (!isDigit(buffer[i])) {
            return std::nullopt;
        }
        length = length * 10 + (buffer[i] - ViUInt32{'0'});
    }
    return length;
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

    const QString fileName = transferFileName();
    if (fileName.isEmpty()) {
        return false;
    }
    QFile file(fileName);
    const auto removal = qScopeGuard([&file] { file.remove(); });
    if (iaReadToFile(session, fileName, *length + terminatorRoom, nullptr) < 0 ||
        !file.open(QIODevice::ReadOnly)) {
        return false;
    }

    const QByteArray bytes = file.readAll();
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
