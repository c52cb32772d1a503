#include "instrument/InstrumentIo.h"

#include "instrument/ExchangeLog.h"
#include "instrument/NumberText.h"
#include "instrument/VisaBinding.h"

#include <array>
#include <cmath>

namespace {

constexpr std::size_t textReplySize = 20000;
constexpr std::size_t numericReplySize = 100;
constexpr std::size_t statusTextSize = 1000;

/// A zeroed buffer for a reply of at most Size bytes. One more byte stays zero and ends the text.
template <std::size_t Size>
using ReplyBuffer = std::array<char, Size + 1>;

/// Make a VISA call, and log it when the log is on. Returns VI_ERROR_LIBRARY_NFOUND when the entry
/// point is null. content() returns the data of the call, for the log.
template <typename Content, typename... Parameters, typename... Arguments>
ViStatus call(const char *name, const ViObject *session, const Content &content,
              ViStatus (*entryPoint)(Parameters...), Arguments... arguments)
{
    if (entryPoint == nullptr) {
        return VI_ERROR_LIBRARY_NFOUND;
    }
    if (!exchangeLog().isDebugEnabled()) {
        return entryPoint(arguments...);
    }
    QElapsedTimer sinceStart;
    sinceStart.start();
    const ViStatus status = entryPoint(arguments...);
    logCall(name, session != nullptr ? *session : 0, content(), status, sinceStart);
    return status;
}

QByteArray nothing()
{
    return {};
}

/// Returns the counter to pass to a VISA read: the caller's, or `own` if the caller passed null and
/// the log needs the number.
ViUInt32 *counter(ViUInt32 *callers, ViUInt32 *own)
{
    return callers == nullptr && exchangeLog().isDebugEnabled() ? own : callers;
}

QByteArray bytesOf(const unsigned char *buffer, ViUInt32 count)
{
    return {reinterpret_cast<const char *>(buffer), static_cast<int>(count)};
}

template <std::size_t BufferSize>
ViStatus readReply(ViSession session, std::array<char, BufferSize> &buffer)
{
    return iaRead(session, reinterpret_cast<unsigned char *>(buffer.data()),
                  static_cast<ViUInt32>(BufferSize - 1), nullptr);
}

template <std::size_t BufferSize>
ViStatus query(ViSession session, const QString &command, std::array<char, BufferSize> &buffer)
{
    const ViStatus status = iaPrintf(session, command);
    if (status != VI_SUCCESS) {
        return status;
    }
    return readReply(session, buffer);
}

} // namespace

ViStatus iaOpenDefaultRM(ViSession *resourceManager)
{
    return call("viOpenDefaultRM", resourceManager, nothing, p_viOpenDefaultRM, resourceManager);
}

ViStatus iaOpen(ViSession resourceManager, const QString &resource, ViAccessMode accessMode,
                ViUInt32 timeout, ViSession *session)
{
    const QByteArray name = resource.toLocal8Bit();
    return call(
        "viOpen", session, [&] { return readable(name); }, p_viOpen, resourceManager,
        name.constData(), accessMode, timeout, session);
}

ViStatus iaClose(ViSession session)
{
    return call("viClose", &session, nothing, p_viClose, session);
}

ViStatus iaClear(ViSession session)
{
    return call("viClear", &session, nothing, p_viClear, session);
}

ViStatus iaWrite(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    const auto content = [=] { return readable(bytesOf(buffer, count)); };
    return call("viWrite", &session, content, p_viWrite, session, buffer, count, returnedCount);
}

ViStatus iaRead(ViSession session, unsigned char *buffer, ViUInt32 count, ViUInt32 *returnedCount)
{
    ViUInt32 own = 0;
    const ViUInt32 &size = returnedCount != nullptr ? *returnedCount : own;
    const auto content = [&] { return readable(bytesOf(buffer, qMin(size, count))); };
    return call("viRead", &session, content, p_viRead, session, buffer, count,
                counter(returnedCount, &own));
}

ViStatus iaReadToFile(ViSession session, const QString &fileName, ViUInt32 count,
                      ViUInt32 *returnedCount)
{
    ViUInt32 own = 0;
    const ViUInt32 &size = returnedCount != nullptr ? *returnedCount : own;
    const auto content = [&] { return QByteArray::number(size) + " bytes to a file"; };
    return call("viReadToFile", &session, content, p_viReadToFile, session,
                fileName.toLocal8Bit().constData(), count, counter(returnedCount, &own));
}

ViStatus iaSetAttribute(ViSession session, ViAttr attribute, ViAttrState value)
{
    const auto content = [=] {
        return QByteArray::number(attribute, 16) + ' ' + QByteArray::number(qulonglong{value});
    };
    return call("viSetAttribute", &session, content, p_viSetAttribute, session, attribute, value);
}

ViStatus iaGetAttribute(ViSession session, ViAttr attribute, void *value)
{
    return call("viGetAttribute", &session, nothing, p_viGetAttribute, session, attribute, value);
}

ViStatus iaSetBuf(ViSession session, ViUInt16 mask, ViUInt32 size)
{
    return call("viSetBuf", &session, nothing, p_viSetBuf, session, mask, size);
}

ViStatus iaReadSTB(ViSession session, ViUInt16 *statusByte)
{
    return call("viReadSTB", &session, nothing, p_viReadSTB, session, statusByte);
}

ViStatus iaGpibControlREN(ViSession session, ViUInt16 mode)
{
    const auto content = [=] { return "mode " + QByteArray::number(mode); };
    return call("viGpibControlREN", &session, content, p_viGpibControlREN, session, mode);
}

ViStatus iaStatusDesc(ViSession session, ViStatus status, QString *text)
{
    if (p_viStatusDesc == nullptr) {
        return VI_ERROR_LIBRARY_NFOUND;
    }
    ReplyBuffer<statusTextSize> buffer{};
    const ViStatus result =
        call("viStatusDesc", &session, nothing, p_viStatusDesc, session, status, buffer.data());
    *text = QString::fromUtf8(buffer.data());
    return result;
}

ViStatus iaPrintf(ViSession session, const QString &command)
{
    // The count is the number of characters. An encoding with fewer bytes is filled up with zeros,
    // one with more is cut off. Commands are ASCII, where both numbers are the same.
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
    // The remainder of any finite number fits an int. An infinity or NaN gives the code 0.
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
