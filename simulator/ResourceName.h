#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// The parts of a VISA resource string that say which instrument is meant.
struct ResourceName
{
    std::string host;   ///< lower case
    std::string device; ///< lower case; "inst0" when the string names none
};

/// Reads `TCPIP[board]::host[::device]::INSTR` (VPP-4.3, section 4.3.1.1) in any letter case.
/// Returns nothing when the text is malformed.
std::optional<ResourceName> parseResourceName(std::string_view text);

} // namespace simulator
