#pragma once

/// The command dialects of oscilloscopes. Every place where they differ is a switch without a
/// default, so that the compiler lists those places for a further dialect.
enum class OscilloscopeType
{
    Kvx,
    Lpa4004,
};

/// Tell how long the dialect's record lasts, in seconds; the trigger is at its middle.
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
