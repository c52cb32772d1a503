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
/// may lock it, and BENCh:FAULt orders faults. Only one thread may use it at a time.
class Device
{
public:
    /// The faults that BENCh:FAULt has ordered.
    struct Faults
    {
        bool connectionLost = false;         ///< the next client to call loses its connection
        bool missedTrigger = false;          ///< the next record or sweep never ends
        Clock::time_point busyUntil;         ///< as if another client had locked it
        std::optional<Clock::duration> late; ///< how much later the next answer comes
        std::optional<std::size_t> cutAt;    ///< bytes that are left of the next longer answer
    };

    /// Durations are multiplied by the time scale. With 0 nothing takes time.
    Device(std::string name, std::unique_ptr<Instrument> instrument, double timeScale);

    /// Let the record or sweep that a message started take its time from now on. Apply the ordered
    /// faults to the answer.
    void finish(std::string *answer);

    /// Returns the instant at which a client can use the device, as far as locks go; `never` while
    /// that is not known.
    [[nodiscard]] Clock::time_point freeAt(const MessageExchange *client) const;

    /// Returns the instant at which a wait that began then times out.
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
    Error order(const Instrument::Call &call);

    double timeScale;
};

} // namespace simulator
