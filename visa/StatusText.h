#pragma once

#include "visa/VisaTypes.h"

#include <string>

namespace visa {

/// Returns a description of a completion or error code, and sets known to false for any other. The
/// text fits the 256 bytes of a caller's buffer (VPP-4.3, viStatusDesc).
std::string statusText(ViStatus status, bool *known);

/// Returns the name of a completion or error code, as "VI_ERROR_TMO"; for any other its pattern, as
/// "0xBFFF0123".
std::string statusName(ViStatus status);

} // namespace visa
