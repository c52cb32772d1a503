#pragma once

#include <string>
#include <vector>

namespace lan {

/// Full resource strings of the instruments that "instruments.ini" in the operator's settings
/// directory names in its section "Instruments": name=host, or name=host::device. Empty without the
/// file; what is no host is left out.
std::vector<std::string> hostsFileResources();

} // namespace lan
