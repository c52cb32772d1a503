#pragma once

#include "visa/VisaTypes.h"

#include <string>

namespace visa {

/// Returns a description of a completion or error code, and sets known to false for any other. The
/// text fits the 256 bytes of a caller's buffer (VPP-4.3, viStatusDesc).
std::string statusText(ViStatus status, bool *known);

} // namespace visa
