#include "simulator/scpi/Setting.h"

#include "simulator/scpi/Number.h"

#include <algorithm>
#include <cmath>

namespace simulator {

Setting::Setting(std::string_view pattern, Kind kind, double minimum, double maximum,
                 double powerUp, std::string_view unit, Choices choices)
    : pattern(pattern),
      kind(kind),
      minimum(minimum),
      maximum(maximum),
      powerUp(powerUp),
      unit(unit),
      choices(std::move(choices)),
      largest(Pattern(pattern).largestSuffixes()),
      values(largest[0] * largest[1], powerUp)
{
}

Setting Setting::withOptionalParameter() &&
{
    parameterIsOptional = true;
    return std::move(*this);
}

bool Setting::parseLimit(std::string_view text, double *value) const
{
    if (kind != Kind::Number && kind != Kind::Integer) {
        return false;
    }
    for (const auto &[name, limit] : {std::pair<std::string_view, double>{"MINimum", minimum},
                                      {"MAXimum", maximum},
                                      {"DEFault", powerUp}}) {
        if (isMnemonic(name, text)) {
            *value = limit;
            return true;
        }
    }
    return false;
}

Error Setting::parse(std::string_view text, double factor, double *value) const
{
    if (kind == Kind::Switch) {
        bool isOn = false;
        const Error error = parseBoolean(text, &isOn);
        *value = isOn ? 1.0 : 0.0;
        return error;
    }
    if (kind == Kind::Choice) {
        for (std::size_t i = 0; i < choices.size(); ++i) {
            if (isMnemonic(choices[i], text)) {
                *value = static_cast<double>(i);
                return scpi::noError;
            }
        }
        return scpi::illegalParameterValue;
    }
    if (parseLimit(text, value)) {
        return scpi::noError;
    }
    double number = 0.0;
    if (const Error error = parseNumber(text, unit, &number)) {
        return error;
    }
    number = kind == Kind::Integer ? std::round(number) : number;
    if (number < minimum * factor || number > maximum * factor) {
        return scpi::dataOutOfRange;
    }
    *value = number / factor;
    return scpi::noError;
}

std::string Setting::text(double value, double factor) const
{
    if (kind == Kind::Choice) {
        return shortForm(choices[static_cast<std::size_t>(value)]);
    }
    return numericResponse(value * factor);
}

void Setting::reset()
{
    std::fill(values.begin(), values.end(), powerUp);
}

} // namespace simulator
