#include "simulator/Device.h"

#include "simulator/scpi/Number.h"

#include <algorithm>
#include <array>
#include <functional>
#include <utility>

namespace simulator {

namespace {

Clock::duration inSeconds(double seconds)
{
    constexpr double longest = 1e9; // a clock has no room for much more
    return std::chrono::duration_cast<Clock::duration>(
        std::chrono::duration<double>(std::clamp(seconds, 0.0, longest)));
}

} // namespace

Device::Device(std::string name, std::unique_ptr<Instrument> instrument, double timeScale)
    : name(std::move(name)), instrument(std::move(instrument)), timeScale(timeScale)
{
    this->instrument->onCommand(
        "BENCh:FAULt", {1, 2},
        [this](const Instrument::Call &call, std::string *) { return injectFault(call); });
}

Error Device::injectFault(const Instrument::Call &call)
{
    struct Fault
    {
        const char *name;
        const char *unit; // of its parameter; null when it has none
        std::function<void(double)> inject;
    };
    const std::array<Fault, 6> all{{
        {"LATE", "S", [&](double seconds) { faults.late = inSeconds(seconds); }},
        {"CUT", "", [&](double bytes) { faults.cutAt = static_cast<std::size_t>(bytes); }},
        {"BUSY", "S", [&](double time) { faults.busyUntil = Clock::now() + inSeconds(time); }},
        {"LOST", nullptr, [&](double) { faults.connectionLost = true; }},
        {"TRIGger", nullptr, [&](double) { faults.missedTrigger = true; }},
        {"NONE", nullptr, [&](double) { faults = {}, readyAt = {}; }},
    }};
    const auto fault = std::find_if(all.begin(), all.end(), [&](const Fault &candidate) {
        return isMnemonic(candidate.name, call.parameters[0]);
    });
    if (fault == all.end()) {
        return scpi::illegalParameterValue;
    }
    const std::size_t count = fault->unit != nullptr ? 2 : 1;
    if (call.parameters.size() != count) {
        return count == 2 ? scpi::missingParameter : scpi::parameterNotAllowed;
    }
    constexpr double greatest = 1e6;
    double number = 0.0;
    if (count == 2) {
        if (const Error error = parseNumber(call.parameters[1], fault->unit, greatest, &number)) {
            return error;
        }
    }
    fault->inject(number);
    return scpi::noError;
}

void Device::applyTimeAndFaults(std::string *answer)
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
