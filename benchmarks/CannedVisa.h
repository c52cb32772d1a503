#pragma once

#include "instrument/VisaBinding.h"

#include <QFile>

#include <cstring>
#include <functional>

/// A VISA library whose answers are ready in memory, so that a benchmark shows the cost of the
/// program. It writes, reads, and reads to files, on one session at a time.
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
            QFile file(QFile::decodeName(name));
            file.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
            return file.write(bytes) == bytes.size() ? status : VI_ERROR_FILE_IO;
        };
    }

private:
    static ViStatus take(ViUInt32 count, ViUInt32 *returnedCount, QByteArray *bytes)
    {
        const auto size = int(qMin<qint64>(count, unread.size() - position));
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
