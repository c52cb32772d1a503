#pragma once

#include "visa/VisaTypes.h"

#include <optional>
#include <string>

namespace visa {

/// A parsed resource string (VPP-4.3, 4.3.1).
struct ResourceName
{
    ViUInt16 interfaceType = 0; ///< VI_INTF_TCPIP and others
    ViUInt16 board = 0;
    std::string host;          ///< TCPIP only: host name or address, in the operator's case
    std::string device;        ///< LAN device name, "inst0" unless said otherwise
    std::string resourceClass; ///< "INSTR", "SOCKET"
    std::string full;          ///< the whole string in its canonical form
};

/// Parse a resource string; "INSTR" may be left out. Nothing when it is not well-formed.
std::optional<ResourceName> parseResourceName(const std::string &text);

} // namespace visa
