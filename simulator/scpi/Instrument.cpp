#include "simulator/scpi/Instrument.h"

#include "simulator/scpi/TraceText.h"

#include <algorithm>

namespace simulator {

namespace {

/// The longest response in bytes. It is longer than any single answer of the bench's instruments; a
/// message that asks for more is deadlocked.
constexpr std::size_t outputLimit = std::size_t{32} << 20U;
constexpr std::size_t errorQueueCapacity = 30;

// Bits of the status byte (IEEE 488.2 11.2 and SCPI-99 volume 1, 9).
constexpr unsigned errorAvailable = 0x04;
constexpr unsigned messageAvailableBit = 0x10;
constexpr unsigned eventSummary = 0x20;
constexpr unsigned masterSummary = 0x40;

// A bit of the event status register (IEEE 488.2 11.5.1).
constexpr unsigned operationComplete = 0x01;

/// Split a text at the separators. No command of the bench takes a quoted string, which could hold
/// one.
std::vector<std::string_view> split(std::string_view text, char separator)
{
    std::vector<std::string_view> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t end = std::min(text.find(separator, start), text.size());
        parts.push_back(trimmed(text.substr(start, end - start)));
        start = end + 1;
    }
    return parts;
}

} // namespace

Instrument::Instrument(std::string identity) : identity(std::move(identity))
{
    addCommonCommands();
}

void Instrument::addCommonCommands()
{
    eventEnable = &add(integer("*ESE", 0.0, 255.0, 0.0));
    serviceEnable = &add(integer("*SRE", 0.0, 255.0, 0.0));
    onAnswer("*IDN", [this] { return identity; });
    onAnswer("*OPC", [] { return std::string("1"); }); // every command completes at once
    onAnswer("*TST", [] { return std::string("0"); });
    onAnswer("*ESR", [this] { return std::to_string(std::exchange(eventStatus, 0U)); });
    onAnswer("*STB", [this] { return std::to_string(statusByte(hasAnswered)); });
    onAnswer("SYSTem:ERRor[:NEXT]", [this] { return takeError(); });
    onAction("*OPC", [this] { eventStatus |= operationComplete; });
    onAction("*WAI", [] {});
    onAction("*RST", [this] { reset(); });
    onAction("*CLS", [this] {
        errors.clear();
        eventStatus = 0;
    });
}

Setting &Instrument::add(Setting setting)
{
    settings.push_back(std::move(setting));
    Setting &added = settings.back();
    addMultiple(added.header(), added, 1.0);
    return added;
}

void Instrument::addMultiple(std::string_view pattern, Setting &setting, double factor)
{
    const std::size_t minimum = setting.isParameterOptional() ? 0 : 1;
    onCommand(pattern, {minimum, 1}, [&setting, factor](const Call &call, std::string *) {
        double value = setting.powerUpValue();
        if (!call.parameters.empty()) {
            if (const Error error = setting.parse(call.parameters[0], factor, &value)) {
                return error;
            }
        }
        setting.set(call.suffixes, value);
        return scpi::noError;
    });
    onQuery(pattern, {0, 1}, [&setting, factor](const Call &call, std::string *answer) {
        double value = setting.value(call.suffixes);
        if (!call.parameters.empty() && !setting.parseLimit(call.parameters[0], &value)) {
            return scpi::parameterNotAllowed;
        }
        *answer = setting.text(value, factor);
        return scpi::noError;
    });
}

void Instrument::onCommand(std::string_view pattern, ParameterCount count, Handler handler)
{
    commands.push_back({Pattern(pattern), false, count, std::move(handler)});
}

void Instrument::onQuery(std::string_view pattern, ParameterCount count, Handler handler)
{
    commands.push_back({Pattern(pattern), true, count, std::move(handler)});
}

void Instrument::onAction(std::string_view pattern, const std::function<void()> &action)
{
    onCommand(pattern, {}, [action](const Call &, std::string *) {
        action();
        return scpi::noError;
    });
}

void Instrument::onAnswer(std::string_view pattern, const std::function<std::string()> &text)
{
    onQuery(pattern, {}, [text](const Call &, std::string *answer) {
        *answer = text();
        return scpi::noError;
    });
}

void Instrument::addFormatCommands()
{
    onCommand("FORMat[:DATA]", {1, 2}, [this](const Call &call, std::string *) {
        const bool isReal = isMnemonic("REAL", call.parameters[0]);
        if (!isReal && !isMnemonic("ASCii", call.parameters[0])) {
            return scpi::illegalParameterValue;
        }
        if (call.parameters.size() == 2 && call.parameters[1] != (isReal ? "32" : "0")) {
            return scpi::illegalParameterValue;
        }
        isRealFormat = isReal;
        return scpi::noError;
    });
    onAnswer("FORMat[:DATA]", [this] { return std::string(isRealFormat ? "REAL,32" : "ASC,0"); });
}

std::string Instrument::traceText(const std::vector<float> &samples) const
{
    return isRealFormat ? definiteLengthBlock(samples) : decimalText(samples);
}

std::string Instrument::takeError()
{
    Error error = scpi::noError;
    if (!errors.empty()) {
        error = errors.front();
        errors.pop_front();
    }
    return std::to_string(error.number) + ",\"" + error.text + '"';
}

void Instrument::reset()
{
    for (Setting &setting : settings) {
        if (&setting != eventEnable && &setting != serviceEnable) { // IEEE 488.2 10.32.3
            setting.reset();
        }
    }
    isRealFormat = false;
}

void Instrument::report(const Error &error)
{
    if (errors.size() < errorQueueCapacity) {
        errors.push_back(error);
    } else {
        errors.back() = scpi::queueOverflow; // SCPI-99 volume 2, 21.8.1
    }
    // Errors from -100 are command errors, from -200 execution, from -300 device and from -400
    // query errors (SCPI-99 volume 2, 21.8). Their bits descend from 0x20.
    eventStatus |= 0x40U >> static_cast<unsigned>(error.number / -100);
}

std::uint8_t Instrument::statusByte(bool messageAvailable) const
{
    const auto mask = [](const Setting *enable) { return static_cast<unsigned>(enable->value()); };
    const unsigned status = (errors.empty() ? 0U : errorAvailable) |
                            (messageAvailable ? messageAvailableBit : 0U) |
                            ((eventStatus & mask(eventEnable)) != 0 ? eventSummary : 0U);
    return static_cast<std::uint8_t>(
        status | ((status & mask(serviceEnable) & ~masterSummary) != 0 ? masterSummary : 0U));
}

const Instrument::Command *Instrument::find(std::string_view header, Suffixes *suffixes,
                                            Error *error) const
{
    const bool isQuery = !header.empty() && header.back() == '?';
    header.remove_suffix(isQuery ? 1 : 0);
    for (const Command &command : commands) {
        const auto match = command.isQuery == isQuery ? command.pattern.match(header, suffixes)
                                                      : Pattern::Match::None;
        if (match == Pattern::Match::Full) {
            return &command;
        }
        if (match == Pattern::Match::SuffixOutOfRange) {
            *error = scpi::headerSuffixOutOfRange;
        }
    }
    return nullptr;
}

Error Instrument::executeUnit(std::string_view unit, std::string *path, std::string *answer)
{
    const auto space = std::find_if(unit.begin(), unit.end(), isSpace);
    const auto headerSize = static_cast<std::size_t>(space - unit.begin());
    std::string header = upperCase(unit.substr(0, headerSize));
    Call call{};
    if (headerSize < unit.size()) { // which is trimmed
        call.parameters = split(unit.substr(headerSize), ',');
    }

    // A header continues from the path of the unit before (SCPI-99 volume 1, 6.2.4). When nothing
    // has that name, these instruments try the header from the root, as many do.
    const bool isCommon = header.front() == '*';
    const bool isAbsolute = header.front() == ':';
    header.erase(0, isAbsolute ? 1 : 0);
    Error error = scpi::undefinedHeader;
    const Command *command = nullptr;
    if (!isAbsolute && !isCommon && !path->empty()) {
        command = find(*path + header, &call.suffixes, &error);
        if (command != nullptr) {
            header.insert(0, *path);
        }
    }
    if (command == nullptr) {
        command = find(header, &call.suffixes, &error);
    }
    if (command == nullptr) {
        return error;
    }
    if (!isCommon) { // common commands do not change the path (IEEE 488.2 A.1.1)
        const std::size_t colon = header.rfind(':');
        *path = colon == std::string::npos ? std::string() : header.substr(0, colon + 1);
    }
    if (call.parameters.size() < command->count.minimum) {
        return scpi::missingParameter;
    }
    if (call.parameters.size() > command->count.maximum) {
        return scpi::parameterNotAllowed;
    }
    return command->handler(call, answer);
}

std::string Instrument::execute(std::string_view message)
{
    std::string response = executeUnits(message);
    messageExecuted();
    return response;
}

std::string Instrument::executeUnits(std::string_view message)
{
    std::string response;
    std::string path; // of the unit before, ending with a colon
    for (const std::string_view unit : split(message, ';')) {
        if (unit.empty()) {
            continue;
        }
        hasAnswered = !response.empty();
        std::string answer;
        if (const Error error = executeUnit(unit, &path, &answer)) {
            report(error);
            continue;
        }
        if (response.size() + answer.size() > outputLimit) {
            report(scpi::queryDeadlocked); // the whole response is dropped (IEEE 488.2 6.3.1.7)
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
