#pragma once

#include "visa/wire/RpcMessage.h"

#include <string_view>
#include <variant>

namespace server {

/// A call on the core channel. Each procedure has some of the parameters.
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
    std::string_view data; ///< the bytes to write, or the name of the device
};

/// Decode a call. `data` points into its bytes. Returns the error instead when the call is for
/// another program or version, or when the procedure is unknown or parameters are missing.
std::variant<CoreCall, wire::RpcOutcome> decodedCoreCall(const wire::RpcCall &call);

} // namespace server
