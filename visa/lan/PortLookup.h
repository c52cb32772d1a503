#pragma once

#include "visa/Link.h"
#include "visa/VisaTypes.h"
#include "visa/wire/RpcMessage.h"

class QHostAddress;

namespace lan {

/// Ask the portmapper at `mapperPort` for the TCP port of a program. VI_ERROR_TMO, or
/// VI_ERROR_RSRC_NFOUND when there is no portmapper or no such program.
ViStatus findPort(const QHostAddress &address, std::uint16_t mapperPort,
                  const wire::RpcProcedure &program, visa::Deadline deadline, std::uint16_t *port);

} // namespace lan
