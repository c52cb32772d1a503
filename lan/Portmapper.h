#pragma once

#include "instrument/VisaTypes.h"
#include "lan/RpcMessage.h"
#include "visa/Link.h"

class QHostAddress;

namespace lan {

// The portmapper (RFC 1833, version 2), which tells where the programs of a host listen.

constexpr quint16 portmapperPort = 111;
constexpr quint32 portmapperProgram = 100000;
constexpr quint32 portmapperVersion = 2;
constexpr quint32 getPortProcedure = 3;
constexpr quint32 tcpProtocol = 6;

/// Ask the portmapper at `mapperPort` for the TCP port of a program. VI_ERROR_TMO, or
/// VI_ERROR_RSRC_NFOUND when there is no portmapper or no such program.
ViStatus findPort(const QHostAddress &address, quint16 mapperPort, const RpcProcedure &program,
                  visa::Deadline deadline, quint16 *port);

} // namespace lan
