#pragma once

#include "visa/Deadline.h"
#include "visa/wire/RpcMessage.h"

#include <string>
#include <string_view>

namespace lan {

/// A connection to a host whose procedures are called. One thread at a time may use it. Its
/// functions return VISA statuses. The connection is lost when the host ends it, when the host owes
/// an acknowledgement and has sent none for 10 s, or when a call times out before all of it is
/// sent.
class RpcClient
{
public:
    RpcClient();
    RpcClient(const RpcClient &) = delete;
    RpcClient &operator=(const RpcClient &) = delete;
    ~RpcClient();

    /// Connect to a numeric address. Returns VI_ERROR_TMO; VI_ERROR_RSRC_NFOUND when nothing
    /// listens there; VI_ERROR_ALLOC when the process has too many open files.
    ViStatus connectTo(const std::string &address, std::uint16_t port, visa::Deadline deadline);

    /// Call a procedure and wait for its results, which are valid until the next call. Returns
    /// VI_ERROR_TMO; VI_ERROR_NSUP_OPER when the host does not have the procedure; VI_ERROR_IO when
    /// the answer is malformed, too long or another error; VI_ERROR_CONN_LOST when the connection
    /// is lost.
    ViStatus call(const wire::RpcProcedure &procedure, std::string_view arguments,
                  visa::Deadline deadline, std::string_view *results);

    /// Returns true from connectTo() until the connection is known to be lost.
    [[nodiscard]] bool isConnected() const { return socket >= 0; }

private:
    ViStatus send(std::string_view record, visa::Deadline deadline);
    ViStatus receive(visa::Deadline deadline);
    [[nodiscard]] ViStatus wait(short events, visa::Deadline deadline) const;
    ViStatus close(ViStatus status);

    int socket = -1;
    wire::RecordReader reader;
    std::string answer;
    std::uint32_t xid;
};

/// Ask the portmapper of a host at `mapperPort` for the TCP port of a program. Returns
/// VI_ERROR_TMO; VI_ERROR_RSRC_NFOUND when there is no portmapper or no such program;
/// VI_ERROR_ALLOC when the process has too many open files.
ViStatus findPort(const std::string &address, std::uint16_t mapperPort,
                  const wire::RpcProcedure &program, visa::Deadline deadline, std::uint16_t *port);

} // namespace lan
