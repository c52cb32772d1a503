#pragma once

#include "visa/VisaTypes.h"

#include <optional>
#include <string>

namespace visa {

/// A parsed resource string (VPP-4.3, 4.3.1) of the only kind that this library opens,
/// TCPIP[board]::host[::device][::INSTR].
struct ResourceName
{
    ViUInt16 board = 0;
    std::string host;   ///< name or address, in the letter case given
    std::string device; ///< "inst0" if none is given
    std::string full;   ///< the whole string in its canonical form
};

/// Parse a resource string, also one that was pasted with blanks or line ends around it. Returns
/// nothing when it is malformed or of another kind.
std::optional<ResourceName> parseResourceName(const std::string &text);

/// Returns whether a regular expression of viFindRsrc matches the whole text, in any letter case.
/// VPP-4.3 defines: ? for any character, lists in brackets, * and + for repetitions, |,
/// parentheses, and a backslash before a character that stands for itself. Returns nothing when the
/// expression is malformed or has conditions on attributes, which are not supported.
std::optional<bool> matchesExpression(const std::string &expression, const std::string &text);

} // namespace visa
