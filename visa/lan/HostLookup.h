#pragma once

#include "visa/Deadline.h"

#include <optional>
#include <string>
#include <vector>

namespace lan {

/// Find the numeric addresses of a host. A numeric address is not looked up. Returns an empty list
/// when there is no such host, and nothing when the system's resolver does not answer by the
/// deadline.
std::optional<std::vector<std::string>> addressesOf(const std::string &host,
                                                    visa::Deadline deadline);

} // namespace lan
