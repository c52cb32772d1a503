#include "simulator/Device.h"

#include "simulator/scpi/Number.h"

#include <algorithm>
#include <utility>

namespace simulator {

namespace {

Clock::duration inSeconds(double seconds)
{
    // What would not fit a clock is as good as for ever.
    constexpr double longest = 1e9;
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, longest)));
}

} // namespace

Device::Device(std::string name, std::unique_ptr<Instrument> instrument, double timeScale)
    : name(std::move(name)), instrument(std::move(instrument)), timeScale(timeScale)
{
    this->instrument->onCommand(
        "BENCh:FAULt", {1, 2},
        [this](const Instrument::Call &call, std::string *) { return order(call); });
}

Error Device::order(const Instrument::Call &call)
{
    const std::string_view kind = call.parameters[0];
    double number = 0.0;
    const bool isCut = isMnemonic("CUT", kind);
    if (isCut || isMnemonic("LATE", kind) || isMnemonic("BUSY", kind)) {
        if (call.parameters.size() < 2) {
            return scpi::missingParameter;
        }
        if (const Error error = parseNumber(call.parameters[1], isCut ? "" : "S", &number)) {
            return error;
        }
        if (number < 0.0 || number > 1e6) {
            return scpi::dataOutOfRange;
        }
    } else if (call.parameters.size() > 1) {
        return scpi::parameterNotAllowed;
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
        return scpi::illegalParameterValue;
    }
    return scpi::noError;
}

void Device::finish(std::string *answer)
{
    const Clock::time_point now = Clock::now();
    const double seconds = instrument->takeDuration();
    if (seconds > 0.0) {
        const bool isMissed = std::exchange(faults.missedTrigger, false);
        readyAt = isMissed ? never : now + inSeconds(seconds * timeScale);
    }
    if (!answer->empty() && faults.late && readyAt != never) {
        readyAt = std::max(readyAt, now) + *faults.late;
        faults.late.reset();
    }
    if (faults.cutAt && answer->size() > *faults.cutAt) {
        answer->resize(*faults.cutAt);
        faults.cutAt.reset();
    }
}

Clock::time_point Device::freeAt(const MessageExchange *client) const
{
    return lockHolder != nullptr && lockHolder != client ? never : faults.busyUntil;
}

Clock::time_point Device::timeOut(Clock::time_point began, std::uint32_t milliseconds) const
{
    return timeScale == 0.0 ? began : began + std::chrono::milliseconds(milliseconds);
}

} // namespace simulator
