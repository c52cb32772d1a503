#include "simulator/Instrument.h"

#include "simulator/ScpiNumber.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace simulator {

namespace {

/// More than any answer of the bench's instruments; a message that asks for more is deadlocked.
constexpr std::size_t outputLimit = std::size_t{32} << 20U;

/// The parts of `text` between separators that stand outside quotes (IEEE 488.2 7.7.5).
std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    char quote = 0;
    std::size_t start = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (quote != 0) {
            quote = c == quote ? '\0' : quote;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == separator) {
            parts.push_back(trimmed(text.substr(start, at - start)));
            start = at + 1;
        }
    }
    parts.push_back(trimmed(text.substr(start)));
    return parts;
}

int parseBoolean(std::string_view text, double &value)
{
    if (isMnemonic("ON", text) || isMnemonic("OFF", text)) {
        value = isMnemonic("ON", text) ? 1.0 : 0.0;
        return scpi::noError;
    }
    double number = 0.0;
    const int error = parseNumber(text, number);
    if (error == scpi::noError) {
        value = std::round(number) != 0.0 ? 1.0 : 0.0; // SCPI-99 volume 1, 7.3
    }
    return error;
}

int parseChoice(std::string_view choices, std::string_view text, double &value)
{
    const auto names = split(choices, '|');
    const auto found = std::find_if(names.begin(), names.end(),
                                    [text](auto name) { return isMnemonic(name, text); });
    if (found == names.end()) {
        return scpi::illegalParameterValue;
    }
    value = static_cast<double>(found - names.begin());
    return scpi::noError;
}

/// The value that `text` gives `setting`, in terms of the state that is stored.
int parseValue(const Setting &setting, std::string_view text, double &value)
{
    if (setting.kind == Setting::Kind::Boolean) {
        return parseBoolean(text, value);
    }
    if (setting.kind == Setting::Kind::Choice) {
        return parseChoice(setting.choices, text, value);
    }
    double number = 0.0;
    if (const int error = parseNumber(text, number); error != scpi::noError) {
        return error;
    }
    if (setting.kind == Setting::Kind::Integer) {
        number = std::round(number);
    }
    if (number < setting.minimum || number > setting.maximum) {
        return scpi::dataOutOfRange;
    }
    value = number / setting.factor;
    return scpi::noError;
}

} // namespace

Instrument::Instrument(std::string identity, const std::vector<Setting> &settings,
                       InstrumentState &state)
    : identity_(std::move(identity)), state_(state)
{
    for (const Setting &setting : settings) {
        addSetting(setting);
    }
    onAnswer("*IDN", [this] { return identity_; });
    onAnswer("*OPC", [] { return std::string("1"); }); // the commands before it have ended
    onAnswer("SYSTem:ERRor[:NEXT]", [this] { return errors().next(); });
    onEvent("*OPC", [] {});
    onEvent("*WAI", [] {});
    onEvent("*CLS", [this] { errors().clear(); });
    onEvent("*RST", [this] { reset(); });
}

void Instrument::addSetting(const Setting &setting)
{
    const ScpiPattern pattern(setting.pattern);
    Row added{setting, pattern.largestSuffixes(), valueCount_};
    if (setting.shares.empty()) {
        valueCount_ += added.largest[0] * added.largest[1];
        if (valueCount_ > state_.values.size()) {
            throw std::logic_error("no room for " + std::string(setting.pattern));
        }
    } else {
        const Row &shared = row(setting.shares);
        added.firstValue = shared.firstValue;
        added.setting.minimum = shared.setting.minimum * setting.factor;
        added.setting.maximum = shared.setting.maximum * setting.factor;
    }
    rows_.push_back(added);
    commands_.push_back(
        {pattern, [this, added](const Call &call, std::string &) { return change(added, call); },
         [this, added](const Call &call, std::string &answer) {
             return show(added, call, answer);
         }});
}

void Instrument::onCommand(std::string_view pattern, Handler handler)
{
    commands_.push_back({ScpiPattern(pattern), std::move(handler), nullptr});
}

void Instrument::onQuery(std::string_view pattern, Handler handler)
{
    commands_.push_back({ScpiPattern(pattern), nullptr, std::move(handler)});
}

void Instrument::onEvent(std::string_view pattern, const std::function<void()> &action)
{
    onCommand(pattern, [action](const Call &call, std::string &) {
        if (!call.parameters.empty()) {
            return scpi::parameterNotAllowed;
        }
        action();
        return scpi::noError;
    });
}

void Instrument::onSwitch(std::string_view pattern, const std::function<void(bool)> &turn,
                          const std::function<bool()> &isOn)
{
    onCommand(pattern, [turn](const Call &call, std::string &) {
        if (call.parameters.size() != 1) {
            return call.parameters.empty() ? scpi::missingParameter : scpi::parameterNotAllowed;
        }
        double value = 0.0;
        const int error = parseBoolean(call.parameters[0], value);
        if (error == scpi::noError) {
            turn(value != 0.0);
        }
        return error;
    });
    onAnswer(pattern, [isOn] { return std::string(isOn() ? "1" : "0"); });
}

void Instrument::addFormatCommands(TraceFormat &format)
{
    onCommand("FORMat[:DATA]",
              [&format](const Call &call, std::string &) { return format.set(call.parameters); });
    onAnswer("FORMat[:DATA]", [&format] { return format.text(); });
}

void Instrument::onAnswer(std::string_view pattern, const std::function<std::string()> &text)
{
    onQuery(pattern, [text](const Call &call, std::string &answer) {
        if (!call.parameters.empty()) {
            return scpi::parameterNotAllowed;
        }
        answer = text();
        return scpi::noError;
    });
}

const Instrument::Row &Instrument::row(std::string_view pattern) const
{
    for (const Row &candidate : rows_) {
        if (candidate.setting.pattern == pattern) {
            return candidate;
        }
    }
    throw std::logic_error("no setting " + std::string(pattern));
}

double &Instrument::valueOf(const Row &row, const Suffixes &suffixes) const
{
    return state_.values.at(row.firstValue + (suffixes[0] - 1) * row.largest[1] + suffixes[1] - 1);
}

double Instrument::value(std::string_view pattern, std::size_t suffix) const
{
    return valueOf(row(pattern), {suffix, 1});
}

void Instrument::setValue(std::string_view pattern, std::size_t suffix, double value)
{
    valueOf(row(pattern), {suffix, 1}) = value;
}

std::string Instrument::layout() const
{
    std::string patterns;
    for (const Row &row : rows_) {
        patterns.append(row.setting.pattern).append(row.setting.choices).append(1, ',');
    }
    return patterns;
}

void Instrument::switchOn()
{
    state_.errors.clear();
    state_.remote = false;
    reset();
}

void Instrument::reset()
{
    for (const Row &row : rows_) {
        if (row.setting.shares.empty()) {
            std::fill_n(state_.values.begin() + static_cast<std::ptrdiff_t>(row.firstValue),
                        row.largest[0] * row.largest[1], row.setting.powerUp);
        }
    }
}

int Instrument::change(const Row &row, const Call &call)
{
    double value = row.setting.powerUp;
    if (call.parameters.empty() && !row.setting.bare) {
        return scpi::missingParameter;
    }
    if (call.parameters.size() > 1) {
        return scpi::parameterNotAllowed;
    }
    if (!call.parameters.empty()) {
        if (const int error = parseValue(row.setting, call.parameters[0], value);
            error != scpi::noError) {
            return error;
        }
    }
    valueOf(row, call.suffixes) = value;
    return scpi::noError;
}

int Instrument::show(const Row &row, const Call &call, std::string &answer) const
{
    if (!call.parameters.empty()) {
        return scpi::parameterNotAllowed;
    }
    const double value = valueOf(row, call.suffixes) * row.setting.factor;
    if (row.setting.kind == Setting::Kind::Choice) {
        answer = shortForm(split(row.setting.choices, '|').at(static_cast<std::size_t>(value)));
    } else {
        answer = numberText(value);
    }
    return scpi::noError;
}

const Instrument::Command *Instrument::find(std::string_view header, Suffixes &suffixes,
                                            int &error) const
{
    const bool query = !header.empty() && header.back() == '?';
    header.remove_suffix(query ? 1 : 0);
    for (const Command &command : commands_) {
        const Handler &handler = query ? command.query : command.set;
        if (!handler) {
            continue;
        }
        const auto match = command.pattern.match(header, suffixes);
        if (match == ScpiPattern::Match::Full) {
            return &command;
        }
        if (match == ScpiPattern::Match::SuffixOutOfRange) {
            error = scpi::headerSuffixOutOfRange;
        }
    }
    return nullptr;
}

int Instrument::executeUnit(std::string_view unit, std::string &path, std::string &answer)
{
    const auto space = std::find_if(unit.begin(), unit.end(), [](char c) {
        return trimmed({&c, 1}).empty();
    });
    const auto headerSize = static_cast<std::size_t>(space - unit.begin());
    std::string header(unit.substr(0, headerSize));
    Call call{};
    if (const auto rest = trimmed(unit.substr(headerSize)); !rest.empty()) {
        call.parameters = split(rest, ',');
    }

    int error = scpi::undefinedHeader;
    const bool absolute = header.front() == ':';
    header.erase(0, absolute ? 1 : 0);
    const Command *command = find(header, call.suffixes, error);
    if (command == nullptr && !absolute && !path.empty() && header.front() != '*') {
        header.insert(0, path);
        command = find(header, call.suffixes, error);
    }
    if (command == nullptr) {
        return error;
    }
    if (header.front() != '*') { // common commands leave the path alone (IEEE 488.2 A.1.1)
        const std::size_t colon = header.rfind(':');
        path = colon == std::string::npos ? std::string() : header.substr(0, colon + 1);
    }
    return (header.back() == '?' ? command->query : command->set)(call, answer);
}

std::string Instrument::execute(std::string_view message)
{
    std::string response;
    std::string path; // of the last unit, with its last colon
    for (const std::string_view unit : split(message, ';')) {
        if (unit.empty()) {
            continue;
        }
        std::string answer;
        const int error = executeUnit(unit, path, answer);
        if (error != scpi::noError) {
            errors().push(error);
            continue;
        }
        if (response.size() + answer.size() > outputLimit) {
            errors().push(scpi::queryDeadlocked); // IEEE 488.2 6.3.1.7: the output is given up
            return {};
        }
        if (!answer.empty() && !response.empty()) {
            response += ';';
        }
        response += answer;
    }
    if (!response.empty()) {
        response += '\n';
    }
    return response;
}

} // namespace simulator
