#pragma once

#include "visa/VisaTypes.h"

#include <optional>
#include <string>

namespace visa {

/// A parsed resource string (VPP-4.3, 4.3.1).
struct ResourceName
{
    ViUInt16 interfaceType = 0; ///< such as VI_INTF_TCPIP
    ViUInt16 board = 0;
    std::string host;   ///< TCPIP only: host name or address, in the letter case given
    std::string device; ///< TCPIP only: device name, "inst0" if none is given; port of a socket
    std::string resourceClass; ///< such as "INSTR"
    std::string full;          ///< the whole string in its canonical form
};

/// Parse a resource string; "INSTR" may be left out. Returns nothing when it is malformed.
std::optional<ResourceName> parseResourceName(const std::string &text);

} // namespace visa
