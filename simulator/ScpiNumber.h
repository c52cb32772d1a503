#pragma once

#include <string>
#include <string_view>

namespace simulator {

/// Reads a decimal number (IEEE 488.2 7.7.2), whatever the process locale. Returns 0, or the error
/// -104 (no number) or -222 (a number beyond the double range), and then leaves `value` alone.
int parseNumber(std::string_view text, double &value);

/// The shortest text of `value` to 15 digits (IEEE 488.2 8.7.4), whatever the process locale.
std::string numberText(double value);

/// Appends the shortest text that reads back as `value`.
void appendNumber(std::string &text, float value);

} // namespace simulator
