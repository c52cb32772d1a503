#include "simulator/server/Device.h"

#include "simulator/scpi/Number.h"

#include <algorithm>
#include <utility>

namespace server {

namespace {

constexpr Clock::time_point never = Clock::time_point::max();

Clock::duration inSeconds(double seconds)
{
    // What would not fit a clock is as good as for ever.
    constexpr double longest = 1e9;
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, longest)));
}

} // namespace

Device::Device(std::string name, simulator::Instrument &instrument, double timeScale)
    : name(std::move(name)), instrument(instrument), timeScale(timeScale)
{
    instrument.onCommand(
        "BENCh:FAULt", {1, 2},
        [this](const simulator::Instrument::Call &call, std::string *) { return order(call); });
}

simulator::Error Device::order(const simulator::Instrument::Call &call)
{
    using simulator::isMnemonic;
    const std::string_view kind = call.parameters[0];
    double number = 0.0;
    const bool isCut = isMnemonic("CUT", kind);
    if (isCut || isMnemonic("LATE", kind) || isMnemonic("BUSY", kind)) {
        if (call.parameters.size() < 2) {
            return simulator::scpi::missingParameter;
        }
        const simulator::Error error =
            simulator::parseNumber(call.parameters[1], isCut ? "" : "S", &number);
        if (error || number < 0.0 || number > 1e6) {
            return error ? error : simulator::scpi::dataOutOfRange;
        }
    } else if (call.parameters.size() > 1) {
        return simulator::scpi::parameterNotAllowed;
    }

    if (isCut) {
        faults.cutAt = static_cast<std::size_t>(number);
    } else if (isMnemonic("LATE", kind)) {
        faults.late = inSeconds(number);
    } else if (isMnemonic("BUSY", kind)) {
        faults.busyUntil = Clock::now() + inSeconds(number);
    } else if (isMnemonic("LOST", kind)) {
        faults.connectionLost = true;
    } else if (isMnemonic("TRIGger", kind)) {
        faults.missedTrigger = true;
    } else if (isMnemonic("NONE", kind)) {
        faults = {};
        readyAt = {};
    } else {
        return simulator::scpi::illegalParameterValue;
    }
    return simulator::scpi::noError;
}

void Device::write(simulator::Client &client, std::string_view bytes, bool end)
{
    client.write(bytes, end);
    takeDuration();
}

void Device::trigger(simulator::Client &client)
{
    client.trigger();
    takeDuration();
}

void Device::takeDuration()
{
    const double seconds = instrument.takeDuration();
    if (seconds > 0.0) {
        const bool isMissed = std::exchange(faults.missedTrigger, false);
        readyAt = isMissed ? never : Clock::now() + inSeconds(seconds * timeScale);
    }
}

void Device::clear(simulator::Client &client)
{
    client.clear();
    readyAt = {};
}

bool Device::isReady()
{
    const Clock::time_point now = Clock::now();
    if (faults.late && readyAt != never) {
        readyAt = std::max(readyAt, now) + *faults.late;
        faults.late.reset();
    }
    return now >= readyAt;
}

Device::Part Device::read(simulator::Client &client, std::size_t count,
                          std::optional<char> termination)
{
    const auto part = client.read(count, termination);
    if (!part) {
        return {};
    }
    Part answer{std::string(part->bytes), part->isLast};
    if (faults.cutAt && answer.bytes.size() >= *faults.cutAt) {
        answer.bytes.resize(*faults.cutAt);
        answer.isLast = true;
        client.clear();
    } else if (faults.cutAt) {
        *faults.cutAt -= answer.bytes.size();
    }
    if (answer.isLast) {
        faults.cutAt.reset();
    }
    return answer;
}

std::uint8_t Device::statusByte(const simulator::Client &client) const
{
    return instrument.statusByte(client.hasAnswer() && Clock::now() >= readyAt);
}

Clock::time_point Device::timeOut(Clock::time_point began, std::uint32_t milliseconds) const
{
    return timeScale == 0.0 ? began : began + std::chrono::milliseconds(milliseconds);
}

} // namespace server
