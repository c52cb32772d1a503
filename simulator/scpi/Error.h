#pragma once

namespace simulator {

/// An error of an instrument as SYSTem:ERRor? answers it. Number 0 means no error.
struct Error
{
    int number;
    const char *text;

    explicit operator bool() const { return number != 0; }
};

/// The errors of SCPI-99 (volume 2, 21.8) that the bench uses.
namespace scpi {
constexpr Error noError{0, "No error"};
constexpr Error dataType{-104, "Data type error"};
constexpr Error parameterNotAllowed{-108, "Parameter not allowed"};
constexpr Error missingParameter{-109, "Missing parameter"};
constexpr Error undefinedHeader{-113, "Undefined header"};
constexpr Error headerSuffixOutOfRange{-114, "Header suffix out of range"};
constexpr Error invalidSuffix{-131, "Invalid suffix"};
constexpr Error triggerIgnored{-211, "Trigger ignored"};
constexpr Error settingsConflict{-221, "Settings conflict"};
constexpr Error dataOutOfRange{-222, "Data out of range"};
constexpr Error illegalParameterValue{-224, "Illegal parameter value"};
constexpr Error dataStale{-230, "Data corrupt or stale"};
constexpr Error queueOverflow{-350, "Queue overflow"};
constexpr Error inputBufferOverrun{-363, "Input buffer overrun"};
constexpr Error queryInterrupted{-410, "Query INTERRUPTED"};
constexpr Error queryUnterminated{-420, "Query UNTERMINATED"};
constexpr Error queryDeadlocked{-430, "Query DEADLOCKED"};
} // namespace scpi

} // namespace simulator
