#pragma once

#include "visa/wire/RpcMessage.h"

namespace server {

/// Answer a call to the portmapper (RFC 1833, version 2) of a host whose only program is VXI-11's
/// core channel at this TCP port. Clients ask for versions 3 and 4 first.
std::string portmapAnswer(const wire::RpcCall &call, std::uint16_t corePort);

} // namespace server
