#pragma once

#include "simulator/scpi/ErrorQueue.h"

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The setting FORMat[:DATA], which chooses how an instrument answers its traces: as decimal text
/// (ASCii, at power-up) or as binary blocks (REAL,32).
class TraceFormat
{
public:
    /// Set the format from the one or two parameters of the command.
    Error set(const std::vector<std::string_view> &parameters);
    /// Returns the answer to the query.
    [[nodiscard]] std::string text() const { return isReal ? "REAL,32" : "ASC,0"; }
    void reset() { isReal = false; }

    /// Returns samples in this format: numbers separated by commas, or one definite-length block of
    /// little-endian 32-bit floats (IEEE 488.2 8.7.9).
    [[nodiscard]] std::string encode(const std::vector<float> &samples) const;

private:
    bool isReal = false;
};

} // namespace simulator
