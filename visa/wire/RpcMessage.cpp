#include "visa/wire/RpcMessage.h"

#include "visa/wire/Xdr.h"

#include <QIODevice>

#include <algorithm>
#include <utility>

namespace lan {

namespace {

constexpr quint32 rpcVersion = 2;
constexpr quint32 callType = 0;
constexpr quint32 replyType = 1;
constexpr quint32 acceptedStatus = 0;
constexpr quint32 lastFragment = 0x80000000;
constexpr int markSize = 4;

} // namespace

QByteArray encoded(const RpcCall &call)
{
    const RpcProcedure &what = call.procedure;
    return xdrWords({call.xid, callType, rpcVersion, what.program, what.version, what.procedure, //
                     0, 0, 0, 0}) +
           call.arguments;
}

QByteArray encoded(const RpcReply &reply)
{
    return xdrWords(
               {reply.xid, replyType, acceptedStatus, 0, 0, static_cast<quint32>(reply.outcome)}) +
           reply.results;
}

std::optional<RpcCall> decodedCall(const QByteArray &message)
{
    QDataStream from(message);
    RpcCall call;
    quint32 type = 0;
    quint32 version = 0;
    quint32 flavour = 0;
    from >> call.xid >> type >> version >> call.procedure.program >> call.procedure.version >>
        call.procedure.procedure;
    for (int i = 0; i < 2; ++i) { // credential and verifier
        from >> flavour;
        readOpaque(from, message);
    }
    if (from.status() != QDataStream::Ok || type != callType || version != rpcVersion) {
        return std::nullopt;
    }
    call.arguments = rest(from, message);
    return call;
}

std::optional<RpcReply> decodedReply(const QByteArray &message)
{
    QDataStream from(message);
    RpcReply reply;
    quint32 type = 0;
    quint32 status = 0;
    from >> reply.xid >> type >> status;
    if (from.status() != QDataStream::Ok || type != replyType) {
        return std::nullopt;
    }
    if (status != acceptedStatus) {
        reply.outcome = RpcOutcome::SystemError;
        return reply;
    }
    quint32 word = 0;
    from >> word; // the verifier
    readOpaque(from, message);
    from >> word;
    if (from.status() != QDataStream::Ok) {
        return std::nullopt;
    }
    reply.outcome =
        static_cast<RpcOutcome>(std::min(word, static_cast<quint32>(RpcOutcome::SystemError)));
    reply.results = rest(from, message);
    return reply;
}

QByteArray asRecord(const QByteArray &message)
{
    return xdrWords({lastFragment | static_cast<quint32>(message.size())}) + message;
}

RecordReader::State RecordReader::read(QIODevice &from)
{
    while (missing > 0 || !isLast) {
        if (missing == 0) {
            if (from.bytesAvailable() < markSize) {
                return State::Incomplete;
            }
            QDataStream(from.read(markSize)) >> missing;
            isLast = (missing & lastFragment) != 0;
            missing &= ~lastFragment;
            if (missing > limit - record.size()) {
                return State::TooLong;
            }
            continue;
        }
        const int there = static_cast<int>(std::min<qint64>(missing, from.bytesAvailable()));
        const int before = record.size();
        record.resize(before + there);
        const qint64 got = from.read(record.data() + before, there);
        record.resize(before + static_cast<int>(std::max<qint64>(got, 0)));
        if (got <= 0) {
            return State::Incomplete;
        }
        missing -= static_cast<quint32>(got);
    }
    return State::Complete;
}

QByteArray RecordReader::take()
{
    isLast = false;
    return std::exchange(record, {});
}

} // namespace lan
