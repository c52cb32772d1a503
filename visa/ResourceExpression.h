#pragma once

#include <optional>
#include <string>

namespace visa {

/// Tell whether a regular expression of viFindRsrc (VPP-4.3: ? for any character, lists in
/// brackets, * and + for repetitions, |, parentheses, a backslash before an ordinary character)
/// matches all of the text, in any letter case. Nothing when it is malformed, or has conditions on
/// attributes.
std::optional<bool> matchesExpression(const std::string &expression, const std::string &text);

} // namespace visa
