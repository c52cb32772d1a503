#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The format in which an instrument answers its traces, FORMat[:DATA]: decimal text (ASCii) at
/// power-up, or binary blocks (REAL,32).
class TraceFormat
{
public:
    /// Takes the parameters of the command; returns 0 or an error number.
    int set(const std::vector<std::string_view> &parameters);
    /// The answer to its query.
    [[nodiscard]] std::string text() const { return real_ ? "REAL,32" : "ASC,0"; }
    void reset() { real_ = false; }

    /// Numbers separated by commas, or one definite-length block of little-endian 32-bit floats
    /// (IEEE 488.2 8.7.9).
    [[nodiscard]] std::string encode(const std::vector<float> &samples) const;

private:
    bool real_ = false;
};

} // namespace simulator
