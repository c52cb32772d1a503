#pragma once

#include "visa/wire/RpcMessage.h"

#include <string_view>
#include <variant>

namespace server {

/// The parameters of a call on the core channel; a procedure has some of them.
struct CoreCall
{
    std::uint32_t procedure = 0;
    std::uint32_t link = 0;
    std::uint32_t flags = 0;
    std::uint32_t ioTimeout = 0;   ///< ms
    std::uint32_t lockTimeout = 0; ///< ms
    std::uint32_t requestSize = 0;
    std::uint32_t terminator = 0;
    bool lockDevice = false;
    std::string_view data; ///< what is written; the name of a device
};

/// Decode a call, whose bytes the parameters share. Returns how it fails when it is none of the
/// core channel's, or parameters are missing.
std::variant<CoreCall, wire::RpcOutcome> decodedCoreCall(const wire::RpcCall &call);

} // namespace server
