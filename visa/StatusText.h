#pragma once

#include "visa/VisaTypes.h"

#include <string>

namespace visa {

/// Describe a completion or error code; sets known to whether it is one. The text fits the 256
/// bytes that VISA guarantees its callers (VPP-4.3, viStatusDesc).
std::string statusText(ViStatus status, bool *known);

} // namespace visa
