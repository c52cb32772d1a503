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
            unread = answerTo(
                QByteArray::fromRawData(reinterpret_cast<const char *>(bytes), int(count)));
            position = 0;
            return VI_SUCCESS;
        };
        p_viRead = [](ViSession, ViByte *buffer, ViUInt32 count, ViUInt32 *returnedCount) {
            QByteArray bytes;
            const ViStatus status = take(count, returnedCount, &bytes);
            std::memcpy(buffer, bytes.constData(), std::size_t(bytes.size()));
            return status;
        };
        p_viReadToFile = [](ViSession, const ViChar *name, ViUInt32 count,
                            ViUInt32 *returnedCount) {
            QByteArray bytes;
            const ViStatus status = take(count, returnedCount, &bytes);
            const int file = ::open(name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
            const auto written = ::write(file, bytes.constData(), std::size_t(bytes.size()));
            ::close(file);
            return written == bytes.size() ? status : VI_ERROR_FILE_IO;
        };
    }

private:
    static ViStatus take(ViUInt32 count, ViUInt32 *returnedCount, QByteArray *bytes)
    {
        const int size = qMin(int(count), unread.size() - position);
        *bytes = QByteArray::fromRawData(unread.constData() + position, size);
        position += size;
        if (returnedCount != nullptr) {
            *returnedCount = ViUInt32(size);
        }
        if (size == 0 && count > 0) {
            return VI_ERROR_TMO;
        }
        return position == unread.size() ? VI_SUCCESS : VI_SUCCESS_MAX_CNT;
    }

    static inline Answer answerTo;
    static inline QByteArray unread;
    static inline int position = 0; // in unread
};
