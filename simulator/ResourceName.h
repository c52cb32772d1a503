#pragma once

#include "instrument/VisaTypes.h"

#include <optional>
#include <string>

namespace simulator {

/// The parts of a VISA resource string that say which instrument is meant.
struct ResourceName
{
    ViUInt16 board = 0;           ///< 0 when the string has no number
    std::string host;             ///< lower case
    std::string device = "inst0"; ///< lower case
};

/// Reads `TCPIP[board]::host[::device]::INSTR` (VPP-4.3, section 4.3.1.1) in any letter case.
/// Returns nothing when the text is malformed, or longer than 255 characters once written out; it
/// is read no further than that.
std::optional<ResourceName> parseResourceName(const char *text);

/// The same written out in full, as lists of resources show it.
std::string resourceString(const ResourceName &name);

} // namespace simulator
