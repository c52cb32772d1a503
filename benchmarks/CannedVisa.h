#pragma once

#include "instrument/VisaBinding.h"

#include <cstring>
#include <fcntl.h>
#include <functional>
#include <unistd.h>

/// A VISA library whose answers lie ready in memory. It writes, reads, and reads to files, on one
/// session at a time, and costs so little that a benchmark shows the cost of the program.
class CannedVisa
{
public:
    using Answer = std::function<QByteArray(const QByteArray &command)>;

    explicit CannedVisa(Answer answer)
    {
        answerTo = std::move(answer);
        p_viWrite = [](ViSession, const ViByte *bytes, ViUInt32 count, ViUInt32 *) {
            unread = answerTo({reinterpret_cast<const char *>(bytes), int(count)});
            position = 0;
            return VI_SUCCESS;
        };
        p_viRead = [](ViSession, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount) {
            const QByteArray bytes = next(count, returnedCount);
            std::memcpy(buffer, bytes.constData(), std::size_t(bytes.size()));
            return status(bytes, count);
        };
        p_viReadToFile = [](ViSession, const ViChar *name, ViUInt32 count,
                            ViUInt32 *returnedCount) {
            const QByteArray bytes = next(count, returnedCount);
            const int file = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            const auto written = ::write(file, bytes.constData(), std::size_t(bytes.size()));
            ::close(file);
            return written == bytes.size() ? status(bytes, count) : VI_ERROR_FILE_IO;
        };
    }

private:
    static QByteArray next(ViUInt32 count, ViUInt32 *returnedCount)
    {
        const int size = qMin(int(count), unread.size() - position);
        const auto bytes = QByteArray::fromRawData(unread.constData() + position, size);
        position += size;
        if (returnedCount != nullptr) {
            *returnedCount = ViUInt32(size);
        }
        return bytes;
    }

    static ViStatus status(const QByteArray &bytes, ViUInt32 count)
    {
        if (bytes.isEmpty() && count > 0) {
            return VI_ERROR_TMO;
        }
        return position == unread.size() ? VI_SUCCESS : VI_SUCCESS_MAX_CNT;
    }

    static inline Answer answerTo;
    static inline QByteArray unread;
    static inline int position = 0; // in unread
};
