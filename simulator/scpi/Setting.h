#pragma once

#include "simulator/scpi/Error.h"
#include "simulator/scpi/Pattern.h"

#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// A setting of an instrument: the values that its command accepts, and its present value for each
/// numeric suffix of its header.
class Setting
{
public:
    enum class Kind
    {
        Number,
        Integer,
        Switch,
        Choice,
    };
    using Choices = std::vector<std::string_view>; // mnemonics; the value is the index

    Setting(std::string_view pattern, Kind kind, double minimum, double maximum, double powerUp,
            std::string_view unit, Choices choices = {});

    /// Read MINimum, MAXimum or DEFault of a number. Returns false for any other text.
    bool parseLimit(std::string_view text, double *value) const;
    /// Read a parameter that is factor times the value, and set value. The factor is 1 for the
    /// setting's own command.
    Error parse(std::string_view text, double factor, double *value) const;
    /// Returns factor times a value, as a query answers it.
    [[nodiscard]] std::string text(double value, double factor) const;

    /// Set the value at power-up for every suffix.
    void reset();

    [[nodiscard]] double value(const Suffixes &suffixes) const { return values[index(suffixes)]; }
    void set(const Suffixes &suffixes, double value) { values[index(suffixes)] = value; }
    [[nodiscard]] double value(std::size_t suffix = 1) const { return value({suffix, 1}); }
    [[nodiscard]] bool isOn(std::size_t suffix = 1) const { return value(suffix) != 0.0; }
    /// Returns whether the setting has this choice, given as it was defined.
    [[nodiscard]] bool is(std::string_view choice) const
    {
        return choices[static_cast<std::size_t>(value())] == choice;
    }

    [[nodiscard]] std::string_view header() const { return pattern; }
    [[nodiscard]] double powerUpValue() const { return powerUp; }
    /// Allow the command without its parameter; it then restores the value at power-up.
    Setting withOptionalParameter() &&;
    [[nodiscard]] bool isParameterOptional() const { return parameterIsOptional; }

private:
    [[nodiscard]] std::size_t index(const Suffixes &suffixes) const
    {
        return (suffixes[0] - 1) * largest[1] + suffixes[1] - 1;
    }

    std::string_view pattern;
    Kind kind;
    double minimum;
    double maximum;
    double powerUp;
    std::string_view unit;
    Choices choices;
    bool parameterIsOptional = false;
    Suffixes largest;
    std::vector<double> values;
};

/// Define a number, with its unit as IEEE 488.2 writes it ("HZ") if it has one.
inline Setting number(std::string_view pattern, double minimum, double maximum, double powerUp,
                      std::string_view unit = "")
{
    return {pattern, Setting::Kind::Number, minimum, maximum, powerUp, unit};
}

inline Setting integer(std::string_view pattern, double minimum, double maximum, double powerUp)
{
    return {pattern, Setting::Kind::Integer, minimum, maximum, powerUp, ""};
}

inline Setting boolean(std::string_view pattern, bool powerUp)
{
    return {pattern, Setting::Kind::Switch, 0.0, 1.0, powerUp ? 1.0 : 0.0, ""};
}

/// Define a choice by its mnemonics. The first is the value at power-up.
inline Setting choice(std::string_view pattern, const Setting::Choices &mnemonics)
{
    return {pattern, Setting::Kind::Choice, 0.0, 0.0, 0.0, "", mnemonics};
}

} // namespace simulator
