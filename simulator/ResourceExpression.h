#pragma once

#include <optional>
#include <string_view>

namespace simulator {

/// Whether a regular expression of viFindRsrc (VPP-4.3: ? for any character, lists in brackets, *
/// and + for repetitions, |, parentheses, a backslash before an ordinary character) matches all of
/// `text` in any letter case. Nothing when it is malformed.
std::optional<bool> matchesExpression(std::string_view expression, std::string_view text);

} // namespace simulator
