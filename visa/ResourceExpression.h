#pragma once

#include <optional>
#include <string>

namespace visa {

/// Returns whether a regular expression of viFindRsrc matches the whole text, in any letter case.
/// VPP-4.3 defines: ? for any character, lists in brackets, * and + for repetitions, |,
/// parentheses, and a backslash before a character that stands for itself. Returns nothing when the
/// expression is malformed or has conditions on attributes, which are not supported.
std::optional<bool> matchesExpression(const std::string &expression, const std::string &text);

} // namespace visa
