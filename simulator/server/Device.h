#pragma once

#include "simulator/Client.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace server {

using Clock = std::chrono::steady_clock;

/// An instrument of the bench as its clients find it on the network: what it begins takes its time,
/// one link may lock it, and things go wrong to order.
class Device
{
public:
    /// What goes wrong with the connection, by BENCh:FAULt.
    struct Faults
    {
        bool connectionLost = false;         ///< in place of the next answer to a call
        bool missedTrigger = false;          ///< what begins next never ends
        Clock::time_point busyUntil;         ///< as if somebody else had locked it
        std::optional<Clock::duration> late; ///< the next answer
        std::optional<std::size_t> cutAt;    ///< the next answer, bytes
    };

    /// Durations are multiplied by the scale; with 0 everything is over at once.
    Device(std::string name, simulator::Instrument &instrument, double timeScale);

    /// Send bytes of a client; what they begin takes its time from now on.
    void write(simulator::Client &client, std::string_view bytes, bool end);
    void trigger(simulator::Client &client);
    /// Clear a client's side; the instrument gives up what it is doing.
    void clear(simulator::Client &client);
    /// Tell whether answers may leave; from the first time on that one waits, it may be late.
    bool isReady();
    struct Part
    {
        std::string bytes;
        bool isLast = false; ///< nothing of the answer is left
    };
    /// Take a part of the answer, when the device is ready. Without an answer there are no bytes,
    /// and an error in the instrument's queue.
    Part read(simulator::Client &client, std::size_t count, std::optional<char> termination);

    /// Read the status byte, in which an answer counts once it may leave.
    [[nodiscard]] std::uint8_t statusByte(const simulator::Client &client) const;

    /// Tell the instant at which a wait of so many milliseconds that began then is over.
    [[nodiscard]] Clock::time_point timeOut(Clock::time_point began,
                                            std::uint32_t milliseconds) const;

    const std::string name;
    simulator::Instrument &instrument;
    Faults faults;
    int links = 0;
    const void *lockHolder = nullptr; ///< a link

private:
    simulator::Error order(const simulator::Instrument::Call &call);
    void takeDuration();

    double timeScale;
    Clock::time_point readyAt;
};

} // namespace server
