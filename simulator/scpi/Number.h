#pragma once

#include "simulator/scpi/ErrorQueue.h"

#include <string>
#include <string_view>

namespace simulator {

/// Read a decimal number (IEEE 488.2 7.7.2), whatever the process locale, in the unit or with a
/// multiplier before it (7.7.3): "100ms", "5.192 GHz". Returns scpi::dataType (no number),
/// scpi::invalidSuffix (another unit, or none is known) or scpi::dataOutOfRange (beyond the double
/// range), and then leaves value alone.
Error parseNumber(std::string_view text, std::string_view unit, double *value);

/// Read ON, OFF or a number, of which all but those that round to 0 are on (SCPI-99 volume 1, 7.3).
Error parseBoolean(std::string_view text, bool *value);

/// Write a number, to 15 digits (IEEE 488.2 8.7.4), whatever the process locale.
std::string numberText(double value);

/// Append the shortest text that reads back as the value.
void appendNumber(std::string *text, float value);

} // namespace simulator
