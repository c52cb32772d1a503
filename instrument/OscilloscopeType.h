#pragma once

/// The command dialects of oscilloscopes. Wherever they differ there is a switch without a default,
/// so that the compiler names all these places when a dialect is added.
enum class OscilloscopeType
{
    Kvx,
    Lpa4004,
};

/// Returns how long a record of the dialect lasts, in seconds; the trigger is in its middle.
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
