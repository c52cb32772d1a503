#pragma once

#include "simulator/scpi/Instrument.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace simulator {

class MessageExchange;

using Clock = std::chrono::steady_clock;
constexpr Clock::time_point never = Clock::time_point::max();

/// An instrument of the bench as its clients see it. Its records and sweeps take time, one client
/// may lock it, and BENCh:FAULt injects faults. Only one thread may use it at a time.
class Device
{
public:
    /// The faults that BENCh:FAULt has injected.
    struct Faults
    {
        bool connectionLost = false; ///< the next client that needs an answer loses its connection
        bool missedTrigger = false;  ///< the next record or sweep never ends
        Clock::time_point busyUntil; ///< as if another client had locked it
        std::optional<Clock::duration> late; ///< how much later the next answer comes
        std::optional<std::size_t> cutAt;    ///< bytes that are left of the next longer answer
    };

    /// The time scale multiplies the durations of records and sweeps. With 0 they and all time-outs
    /// end at once. The times of faults are not scaled.
    Device(std::string name, std::unique_ptr<Instrument> instrument, double timeScale);

    /// Begin the duration of the record or sweep that a message has started, and apply the injected
    /// faults to the answer.
    void applyTimeAndFaults(std::string *answer);

    /// Returns the instant at which a client can use the device, as far as locks go; `never` while
    /// another client has locked it.
    [[nodiscard]] Clock::time_point freeAt(const MessageExchange *client) const;

    /// Returns the instant at which a wait that began at `began` times out.
    [[nodiscard]] Clock::time_point timeOut(Clock::time_point began,
                                            std::uint32_t milliseconds) const;

    const std::string name;
    const std::unique_ptr<Instrument> instrument;
    Faults faults;
    int clients = 0;                       ///< the number of message exchanges
    static constexpr int clientLimit = 16; ///< for servers; real instruments have a similar one
    const MessageExchange *lockHolder = nullptr;
    Clock::time_point readyAt; ///< from when answers can be read

private:
    Error injectFault(const Instrument::Call &call);

    double timeScale;
};

} // namespace simulator
