#include "simulator/scpi/Number.h"

#include "simulator/scpi/Pattern.h"

#include <array>
#include <charconv>
#include <cmath>
#include <utility>

namespace simulator {

namespace {

constexpr std::array<std::pair<std::string_view, double>, 11> multipliers{{{"", 1.0},
                                                                           {"T", 1e12},
                                                                           {"G", 1e9},
                                                                           {"MA", 1e6},
                                                                           {"K", 1e3},
                                                                           {"M", 1e-3},
                                                                           {"U", 1e-6},
                                                                           {"N", 1e-9},
                                                                           {"P", 1e-12},
                                                                           {"F", 1e-15},
                                                                           {"A", 1e-18}}};

/// Returns the factor that a suffix stands for; 0 when it is no suffix of this unit.
double factorOf(std::string_view suffix, std::string_view unit)
{
    const std::string text = upperCase(suffix);
    if (text == "MHZ" && unit == "HZ") { // here M is mega, not milli (IEEE 488.2 7.7.3.4)
        return 1e6;
    }
    for (const auto &[prefix, factor] : multipliers) {
        if (text == std::string(prefix).append(unit)) {
            return factor;
        }
    }
    return 0.0;
}

} // namespace

Error parseNumber(std::string_view text, std::string_view unit, double *value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1); // std::from_chars takes no plus sign
    }
    double number = 0.0;
    const char *const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error == std::errc::invalid_argument || (error == std::errc() && !std::isfinite(number))) {
        return scpi::dataType;
    }
    const auto suffix = trimmed({end, static_cast<std::size_t>(last - end)});
    const double factor = suffix.empty() ? 1.0 : factorOf(suffix, unit);
    if (factor == 0.0) {
        return scpi::invalidSuffix;
    }
    if (error != std::errc()) {
        return scpi::dataOutOfRange;
    }
    *value = number * factor;
    return scpi::noError;
}

Error parseNumber(std::string_view text, std::string_view unit, double greatest, double *value)
{
    double number = 0.0;
    if (const Error error = parseNumber(text, unit, &number)) {
        return error;
    }
    if (number < 0.0 || number > greatest) {
        return scpi::dataOutOfRange;
    }
    *value = number;
    return scpi::noError;
}

Error parseBoolean(std::string_view text, bool *value)
{
    if (isMnemonic("ON", text) || isMnemonic("OFF", text)) {
        *value = isMnemonic("ON", text);
        return scpi::noError;
    }
    double number = 0.0;
    const Error error = parseNumber(text, "", &number);
    if (!error) {
        *value = std::round(number) != 0.0;
    }
    return error;
}

std::string numericResponse(double value)
{
    std::array<char, 32> digits{};
    char *const first = digits.data();
    char *const last = first + digits.size();
    return {first, std::to_chars(first, last, value, std::chars_format::general, 15).ptr};
}

void appendNumber(std::string *text, float value)
{
    std::array<char, 32> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text->append(digits.data(), result.ptr);
}

} // namespace simulator
