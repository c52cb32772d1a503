#include "instrument/InstrumentIo.h"

#include "instrument/NumberText.h"
#include "instrument/VisaBinding.h"

#include <array>
#include <cmath>

namespace {

constexpr std::size_t textReplySize = 20000;
constexpr std::size_t numericReplySize = 100;
constexpr std::size_t statusTextSize = 1000;

/// A zeroed reply buffer with room for Size bytes and a zero byte that no read can reach.
template <std::size_t Size>
using ReplyBuffer = std::array<char, Size + 1>;

template <typename... Parameters, typename... Arguments>
ViStatus callBound(ViStatus (*entryPoint)(Parameters...), Arguments... arguments)
{
    return entryPoint != nullptr ? entryPoint(arguments...) : VI_ERROR_LIBRARY_NFOUND;
}

template <std::size_t BufferSize>
ViStatus readReply(ViSession session, std::array<char, BufferSize> &buffer)
{
    return callBound(p_viRead, session, reinterpret_cast<ViByte *>(buffer.data()),
                     static_cast<ViUInt32>(BufferSize - 1), nullptr);
}

template <std::size_t BufferSize>
ViStatus query(ViSession session, const QString &command, std::array<char, BufferSize> &buffer)
{
    const ViStatus status = iaPrintf(session, command);
    return status == VI_SUCCESS ? readReply(session, buffer) : status;
}

} // namespace

ViStatus iaOpenDefaultRM(ViSession *resourceManager)
{
    return callBound(p_viOpenDefaultRM, resourceManager);
}

ViStatus iaOpen(ViSession resourceManager, const QString &resource, ViAccessMode accessMode,
                ViUInt32 timeout, ViSession *session)
{
    return callBound(p_viOpen, resourceManager, resource.toLocal8Bit().constData(), accessMode,
                     timeout, session);
}

ViStatus iaClose(ViSession session)
{
    return callBound(p_viClose, session);
}

ViStatus iaClear(ViSession session)
{
    return callBound(p_viClear, session);
}

ViStatus iaWrite(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    return callBound(p_viWrite, session, buffer, count, returnedCount);
}

ViStatus iaRead(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    return callBound(p_viRead, session, buffer, count, returnedCount);
}

ViStatus iaReadToFile(ViSession session, const QString &fileName, ViUInt32 count,
                      ViUInt32 *returnedCount)
{
    return callBound(p_viReadToFile, session, fileName.toLocal8Bit().constData(), count,
                     returnedCount);
}

ViStatus iaSetAttribute(ViSession session, ViAttr attribute, ViAttrState value)
{
    return callBound(p_viSetAttribute, session, attribute, value);
}

ViStatus iaGetAttribute(ViSession session, ViAttr attribute, void *value)
{
    return callBound(p_viGetAttribute, session, attribute, value);
}

ViStatus iaSetBuf(ViSession session, ViUInt16 mask, ViUInt32 size)
{
    return callBound(p_viSetBuf, session, mask, size);
}

ViStatus iaReadSTB(ViSession session, ViUInt16 *statusByte)
{
    return callBound(p_viReadSTB, session, statusByte);
}

ViStatus iaGpibControlREN(ViSession session, ViUInt16 mode)
{
    return callBound(p_viGpibControlREN, session, mode);
}

ViStatus iaStatusDesc(ViSession session, ViStatus status, QString *text)
{
    if (p_viStatusDesc == nullptr) {
        return VI_ERROR_LIBRARY_NFOUND;
    }
    ReplyBuffer<statusTextSize> buffer{};
    const ViStatus result = p_viStatusDesc(session, status, buffer.data());
    *text = QString::fromUtf8(buffer.data());
    return result;
}

ViStatus iaPrintf(ViSession session, const QString &command)
{
    // The write count is the number of characters, which an encoding with fewer bytes must cover.
    QByteArray bytes = command.toLocal8Bit().leftJustified(command.size(), '\0');
    return iaWrite(session, reinterpret_cast<unsigned char *>(bytes.data()),
                   static_cast<ViUInt32>(command.size()), nullptr);
}

ViStatus iaQueryf_s(ViSession session, const QString &command, QString *reply)
{
    ReplyBuffer<textReplySize> buffer{};
    const ViStatus status = query(session, command, buffer);
    if (status == VI_SUCCESS) {
        *reply = QString::fromLocal8Bit(buffer.data());
    }
    return status;
}

ViStatus iaQueryf_f(ViSession session, const QString &command, double *value)
{
    ReplyBuffer<numericReplySize> buffer{};
    const ViStatus status = query(session, command, buffer);
    if (status == VI_SUCCESS) {
        *value = leadingNumber(buffer.data());
    }
    return status;
}

ViStatus iaQueryf_i(ViSession session, const QString &command, int *value)
{
    ReplyBuffer<numericReplySize> buffer{};
    const ViStatus status = query(session, command, buffer);
    if (status == VI_SUCCESS) {
        *value = leadingInteger(buffer.data());
    }
    return status;
}

ViStatus iaScanf_s(ViSession session, QString *reply)
{
    if (p_viRead == nullptr) {
        return VI_ERROR_LIBRARY_NFOUND;
    }
    ReplyBuffer<textReplySize> buffer{};
    const ViStatus status = readReply(session, buffer);
    // The remainder fits an int whatever the number; of an infinity or NaN there is none.
    const double low = std::fmod(std::trunc(leadingNumber(buffer.data())), 256.0);
    const int code = std::isfinite(low) ? static_cast<int>(low) & 0xFF : 0;
    *reply = QString(QChar(code));
    return status;
}

ViStatus iaScanf_f(ViSession session, double *value)
{
    if (p_viRead == nullptr) {
        return VI_ERROR_LIBRARY_NFOUND;
    }
    ReplyBuffer<numericReplySize> buffer{};
    const ViStatus status = readReply(session, buffer);
    *value = leadingNumber(buffer.data());
    return status;
}

QString rstrip(const QString &text)
{
    return text.left(text.indexOf(QLatin1Char('\n')) + 1);
}
