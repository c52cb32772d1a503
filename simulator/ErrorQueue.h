#pragma once

#include <array>
#include <cstddef>
#include <string>

namespace simulator {

/// Error numbers of SCPI-99 (volume 2, 21.8) that the bench uses.
namespace scpi {
constexpr int noError = 0;
constexpr int syntax = -102;
constexpr int dataType = -104;
constexpr int parameterNotAllowed = -108;
constexpr int missingParameter = -109;
constexpr int undefinedHeader = -113;
constexpr int headerSuffixOutOfRange = -114;
constexpr int settingsConflict = -221;
constexpr int dataOutOfRange = -222;
constexpr int illegalParameterValue = -224;
constexpr int dataStale = -230;
constexpr int queueOverflow = -350;
constexpr int inputBufferOverrun = -363;
constexpr int queryInterrupted = -410;
constexpr int queryDeadlocked = -430;
} // namespace scpi

/// The errors of an instrument, oldest first. When it is full, its last entry becomes -350
/// (SCPI-99 volume 2, 21.8.1).
class ErrorQueue
{
public:
    static constexpr std::size_t capacity = 30;

    void push(int error);
    /// Takes the oldest entry as SYSTem:ERRor? answers it: `-113,"Undefined header"`.
    std::string next();
    void clear() { count_ = 0; }
    [[nodiscard]] bool isEmpty() const { return count_ == 0; }

private:
    std::array<int, capacity> errors_{};
    std::size_t count_ = 0;
};

} // namespace simulator
