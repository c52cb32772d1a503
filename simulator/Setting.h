#pragma once

#include <string_view>

namespace simulator {

/// One setting of an instrument, as a row of its table. Its value is a double throughout: the
/// number itself, 0 or 1 of a switch, the index of a choice.
struct Setting
{
    enum class Kind
    {
        Number,
        Integer,
        Boolean,
        Choice
    };

    std::string_view pattern;
    Kind kind;
    double minimum;
    double maximum;
    double powerUp;
    std::string_view choices; // "AUTO|SWEep|FFT"
    std::string_view shares;  // pattern of the setting whose state this one shows, if any
    double factor;            // this setting's value over the shared state
    bool bare;                // the command without a parameter restores the power-up value
};

constexpr Setting number(std::string_view pattern, double minimum, double maximum, double powerUp)
{
    return {pattern, Setting::Kind::Number, minimum, maximum, powerUp, {}, {}, 1.0, false};
}

constexpr Setting integer(std::string_view pattern, double minimum, double maximum, double powerUp)
{
    return {pattern, Setting::Kind::Integer, minimum, maximum, powerUp, {}, {}, 1.0, false};
}

constexpr Setting boolean(std::string_view pattern, bool powerUp)
{
    return {pattern, Setting::Kind::Boolean, 0.0, 1.0, powerUp ? 1.0 : 0.0, {}, {}, 1.0, false};
}

/// The first of the choices is the power-up value.
constexpr Setting choice(std::string_view pattern, std::string_view choices)
{
    return {pattern, Setting::Kind::Choice, 0.0, 0.0, 0.0, choices, {}, 1.0, false};
}

/// A choice whose command may come without a parameter.
constexpr Setting bareChoice(std::string_view pattern, std::string_view choices)
{
    return {pattern, Setting::Kind::Choice, 0.0, 0.0, 0.0, choices, {}, 1.0, true};
}

/// The state of another number in other words: `factor` times its value.
constexpr Setting multiple(std::string_view pattern, std::string_view of, double factor)
{
    return {pattern, Setting::Kind::Number, 0.0, 0.0, 0.0, {}, of, factor, false};
}

} // namespace simulator
