#pragma once

#include "instrument/VisaTypes.h"

#include <string>

namespace simulator {

/// VISA guarantees its callers no more than this for a description, the zero byte included
/// (VPP-4.3, viStatusDesc).
constexpr std::size_t statusTextSize = 256;

/// Describes a completion or error code; sets `known` to whether VISA has it. The text is shorter
/// than statusTextSize.
std::string statusText(ViStatus status, bool &known);

} // namespace simulator
