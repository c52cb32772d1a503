#pragma once

#include "simulator/scpi/Error.h"

#include <string>
#include <string_view>

namespace simulator {

/// Read a decimal number (IEEE 488.2 7.7.2), whatever the process locale. It may have the unit as a
/// suffix, with a multiplier before it (7.7.3): "100ms", "5.192 GHz". On failure returns
/// scpi::dataType (no number), scpi::invalidSuffix (another unit, or a unit where there is none) or
/// scpi::dataOutOfRange (too large or too small for a double) and leaves value unchanged.
Error parseNumber(std::string_view text, std::string_view unit, double *value);

/// Read a number from 0 to `greatest` in the same way. Others are scpi::dataOutOfRange.
Error parseNumber(std::string_view text, std::string_view unit, double greatest, double *value);

/// Read ON, OFF or a number; a number that rounds to 0 is off (SCPI-99 volume 1, 7.3).
Error parseBoolean(std::string_view text, bool *value);

/// Returns a number as a query answers it: rounded to 15 digits, with an exponent only when it is
/// very large or small, whatever the process locale.
std::string numericResponse(double value);

/// Append the shortest text that reads back as the value.
void appendNumber(std::string *text, float value);

} // namespace simulator
