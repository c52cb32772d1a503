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

/// An instrument of the bench as its clients find it: what it begins takes time, one client may
/// lock it, and BENCh:FAULt makes things go wrong. One thread at a time.
class Device
{
public:
    /// What goes wrong next, by BENCh:FAULt.
    struct Faults
    {
        bool connectionLost = false;         ///< of the client that calls next
        bool missedTrigger = false;          ///< what begins next never ends
        Clock::time_point busyUntil;         ///< as if somebody else had locked it
        std::optional<Clock::duration> late; ///< the next answer
        std::optional<std::size_t> cutAt;    ///< the next answer with more bytes
    };

    /// Durations are multiplied by the scale; with 0 everything is over at once.
    Device(std::string name, std::unique_ptr<Instrument> instrument, double timeScale);

    /// Have what a message began take its time from now on. Its answer, if any, may be late or cut.
    void finish(std::string *answer);

    /// Returns the instant from which others leave the device to a client; `never` while nobody
    /// knows.
    [[nodiscard]] Clock::time_point freeAt(const MessageExchange *client) const;

    /// Returns the instant at which a wait of so many milliseconds that began then is over.
    [[nodiscard]] Clock::time_point timeOut(Clock::time_point began,
                                            std::uint32_t milliseconds) const;

    const std::string name;
    const std::unique_ptr<Instrument> instrument;
    Faults faults;
    int clients = 0; ///< message exchanges that there are
    const MessageExchange *lockHolder = nullptr;
    Clock::time_point readyAt; ///< when answers may leave

private:
    Error order(const Instrument::Call &call);

    double timeScale;
};

} // namespace simulator
