#include "measurement/WaveformTransfer.h"

#include "instrument/InstrumentIo.h"
#include "instrument/NumberText.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <QVarLengthArray>

#include <algorithm>
#include <array>
#include <optional>
#ifdef Q_OS_LINUX
#include <sys/mman.h>
#endif

namespace {

/// The file of one transfer: viReadToFile() writes to its name, and the program reads it. On Linux
/// it is in memory. Elsewhere, or if that fails, it is in a temporary folder. The destructor
/// removes it.
class TransferFile
{
public:
    TransferFile()
    {
        if (!openInMemory()) {
            file.close();
            directory.emplace();
            path = directory->isValid() ? directory->filePath("Trace.tmp") : QString();
            file.setFileName(path);
        }
    }

    /// Returns the file's name; empty when no file can be made.
    [[nodiscard]] QString name() const { return path; }

    /// Returns the device to read from; it has no bytes when the file cannot be opened.
    [[nodiscard]] QIODevice &contents()
    {
        if (!file.isOpen()) {
            file.open(unbuffered);
        }
        return file;
    }

private:
    static constexpr QIODevice::OpenMode unbuffered = QIODevice::ReadOnly | QIODevice::Unbuffered;

    bool openInMemory()
    {
#ifdef Q_OS_LINUX
        static const QString descriptors = "/proc/self/fd/";
        static const bool haveNames = QFileInfo::exists(descriptors);
        const int descriptor = haveNames ? memfd_create("Trace.tmp", MFD_CLOEXEC) : -1;
        path = descriptors + QString::number(descriptor);
        return descriptor >= 0 && file.open(descriptor, unbuffered, QFileDevice::AutoCloseHandle);
#else
        return false;
#endif
    }

    std::optional<QTemporaryDir> directory;
    QString path;
    QFile file;
};

/// Bytes to read beyond the block's data, for the terminator.
constexpr ViUInt32 terminatorRoom = 10;

/// Read the header of a definite-length block: '#', a digit n, n digits. Returns the number of data
/// bytes that it announces, 0 when there are no digits; nothing when there is no header or
/// a read fails.
std::optional<ViUInt32> readBlockHeader(ViSession session)
{
    std::array<unsigned char, 2> start{};
    ViUInt32 count = 0;
    if (iaRead(session, start.data(), 2, &count) < 0 || count < 2 || start[0] != '#') {
        return std::nullopt;
    }
    std::array<unsigned char, 100> length{}; // the last byte stays zero and ends the text
    // The character may not be a digit, so the count is limited to the size of the buffer.
    const int digits = qBound(0, start[1] - '0', static_cast<int>(length.size()) - 1);
    if (iaRead(session, length.data(), static_cast<ViUInt32>(digits), nullptr) < 0) {
        return std::nullopt;
    }
    return static_cast<ViUInt32>(
        qMax(0, leadingInteger(reinterpret_cast<const char *>(length.data()))));
}

/// Replace a trace by the 32-bit floats in the first bytes of a device, or in all that it has.
void readSamples(QIODevice &device, qint64 bytes, QVector<double> *trace)
{
    constexpr qint64 size = sizeof(float);
    const qint64 expected = qMin(bytes, device.size()) / size;
    constexpr int usual = 32768; // records up to this length need no heap
    QVarLengthArray<float, usual> floats(static_cast<int>(expected));
    const qint64 read = device.read(reinterpret_cast<char *>(floats.data()), expected * size);
    trace->resize(static_cast<int>(qMax<qint64>(read, 0) / size));
    std::copy_n(floats.begin(), trace->size(), trace->begin());
}

} // namespace

bool queryTrace(ViSession session, const QString &command, QVector<double> *trace)
{
    if (iaPrintf(session, command) != VI_SUCCESS) {
        return true;
    }
    return readTrace(session, trace);
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

    readSamples(file.contents(), *length, trace);
    return true;
}
