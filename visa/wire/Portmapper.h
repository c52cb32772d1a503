#pragma once

#include <cstdint>

namespace wire {

// Numbers of the portmapper (RFC 1833, version 2), which says where the programs of a host listen.

constexpr std::uint16_t portmapperPort = 111;
constexpr std::uint32_t portmapperProgram = 100000;
constexpr std::uint32_t portmapperVersion = 2;
constexpr std::uint32_t getPortProcedure = 3;
constexpr std::uint32_t tcpProtocol = 6;

} // namespace wire
