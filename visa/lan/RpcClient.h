#pragma once

#include "visa/Link.h"
#include "visa/wire/RpcMessage.h"

#include <QTcpSocket>

class QHostAddress;

namespace lan {

/// A connection to a host, over which procedures are called. It needs no event loop, and threads
/// may use it in turns. Statuses are VISA's.
class RpcClient
{
public:
    RpcClient();

    /// Connect. VI_ERROR_TMO, or VI_ERROR_RSRC_NFOUND when nothing listens there.
    ViStatus connectTo(const QHostAddress &address, std::uint16_t port, visa::Deadline deadline);

    /// Call a procedure and wait for its results, which are there until the next call.
    /// VI_ERROR_TMO; VI_ERROR_NSUP_OPER when the host does not have it; VI_ERROR_IO when the answer
    /// makes no sense; VI_ERROR_CONN_LOST, also ever after.
    ViStatus call(const wire::RpcProcedure &procedure, std::string_view arguments,
                  visa::Deadline deadline, std::string_view *results);

private:
    ViStatus send(const std::string &record, visa::Deadline deadline);
    ViStatus receive(visa::Deadline deadline);
    ViStatus failure();

    QTcpSocket socket;
    wire::RecordReader reader;
    std::string answer;
    quint32 xid;
};

/// Milliseconds until a deadline, rounded up; `limit` when there are more.
int millisecondsUntil(visa::Deadline deadline, int limit);

} // namespace lan
