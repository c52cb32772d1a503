#pragma once

/// The types of oscilloscopes; each has its own dialect of commands. Code that depends on the type
/// switches on it without a default, so that the compiler names these switches when a type is
/// added.
enum class OscilloscopeType
{
    Kvx,
    Lpa4004,
};

/// Returns how long a record of the type lasts, in seconds; the trigger is in its middle.
constexpr double recordSpan(OscilloscopeType type)
{
    double span = 0.0;
    switch (type) {
    case OscilloscopeType::Kvx:
        span = 1.0;
        break;
    case OscilloscopeType::Lpa4004:
        span = 1.2;
        break;
    }
    return span;
}
