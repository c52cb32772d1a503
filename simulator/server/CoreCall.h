#pragma once

#include "visa/wire/RpcMessage.h"

#include <optional>

namespace server {

/// The parameters of a call on the core channel; a procedure has some of them.
struct CoreCall
{
    quint32 procedure = 0;
    quint32 link = 0;
    quint32 flags = 0;
    quint32 ioTimeout = 0;   ///< ms
    quint32 lockTimeout = 0; ///< ms
    quint32 requestSize = 0;
    quint32 terminator = 0;
    bool lockDevice = false;
    QByteArray data; ///< what is written; the name of a device
};

/// Decode the parameters of a call, whose bytes they share. Nothing when some are missing.
std::optional<CoreCall> decodedCoreCall(const lan::RpcCall &call);

} // namespace server
