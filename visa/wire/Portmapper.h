#pragma once

#include <QtGlobal>

namespace lan {

// Numbers of the portmapper (RFC 1833, version 2), which says where the programs of a host listen.

constexpr quint16 portmapperPort = 111;
constexpr quint32 portmapperProgram = 100000;
constexpr quint32 portmapperVersion = 2;
constexpr quint32 getPortProcedure = 3;
constexpr quint32 tcpProtocol = 6;

} // namespace lan
