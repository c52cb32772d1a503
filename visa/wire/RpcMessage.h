#pragma once

#include <QByteArray>

#include <optional>

class QIODevice;

namespace lan {

// Messages of ONC remote procedure calls (RFC 5531) and the records that carry them over TCP.

/// What is called.
struct RpcProcedure
{
    quint32 program = 0;
    quint32 version = 0;
    quint32 procedure = 0;
};

/// How a call was taken (RFC 5531, accept_stat); calls that are denied count as SystemError.
enum class RpcOutcome : quint32
{
    Success = 0,
    ProgramUnavailable = 1,
    ProgramMismatch = 2,
    ProcedureUnavailable = 3,
    GarbageArguments = 4,
    SystemError = 5,
};

struct RpcCall
{
    quint32 xid = 0;
    RpcProcedure procedure;
    QByteArray arguments;
};

struct RpcReply
{
    quint32 xid = 0;
    RpcOutcome outcome = RpcOutcome::Success;
    QByteArray results; ///< of a success; of a mismatch, the lowest and the highest version
};

/// Encode a call without credentials, a reply. Both without the mark of a record.
QByteArray encoded(const RpcCall &call);
QByteArray encoded(const RpcReply &reply);

/// Decode a call, a reply, whose arguments and results share the bytes of the message. Nothing when
/// it is something else.
std::optional<RpcCall> decodedCall(const QByteArray &message);
std::optional<RpcReply> decodedReply(const QByteArray &message);

/// A message as a record of one fragment (RFC 5531, 11).
QByteArray asRecord(const QByteArray &message);

/// Puts a record together from its fragments, as they arrive.
class RecordReader
{
public:
    enum class State
    {
        Incomplete,
        Complete,
        TooLong, ///< nothing after it can be understood
    };

    /// A reader of records of at most `limit` bytes.
    explicit RecordReader(qint64 limit) : limit(limit) {}

    /// Read on. Memory is taken for bytes that are there, not for those that a fragment announces.
    State read(QIODevice &from);
    /// Hand out the complete record, and begin with the next.
    QByteArray take();

private:
    qint64 limit;
    QByteArray record;
    quint32 missing = 0; ///< bytes of the fragment
    bool isLast = false; ///< the fragment is the record's last
};

} // namespace lan
