#include "simulator/ScpiNumber.h"

#include "simulator/ErrorQueue.h"

#include <array>
#include <charconv>
#include <cmath>

namespace simulator {

int parseNumber(std::string_view text, double &value)
{
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') {
        text.remove_prefix(1); // the conversion knows no plus sign
    }
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument ||
        (error == std::errc() && !std::isfinite(number))) {
        return scpi::dataType;
    }
    if (error != std::errc()) {
        return scpi::dataOutOfRange;
    }
    value = number;
    return scpi::noError;
}

std::string numberText(double value)
{
    std::array<char, 32> digits{};
    char *const first = digits.data();
    char *const last = first + digits.size();
    return {first, std::to_chars(first, last, value, std::chars_format::general, 15).ptr};
}

void appendNumber(std::string &text, float value)
{
    std::array<char, 32> digits{};
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), value);
    text.append(digits.data(), result.ptr);
}

} // namespace simulator
