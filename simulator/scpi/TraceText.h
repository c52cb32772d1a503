#pragma once

#include <string>
#include <vector>

namespace simulator {

/// Returns samples as one definite-length block of little-endian 32-bit floats (IEEE 488.2 8.7.9).
std::string definiteLengthBlock(const std::vector<float> &samples);

/// Returns samples as decimal numbers separated by commas.
std::string decimalText(const std::vector<float> &samples);

} // namespace simulator
