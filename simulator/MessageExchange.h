#pragma once

#include "simulator/Device.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// One client's exchange of messages with a device (IEEE 488.2, 6). It holds the incomplete
/// message and the unread answer, and it locks the device for its client. Everything else belongs
/// to the device, which its clients share.
class MessageExchange
{
public:
    explicit MessageExchange(Device &device) : device(device) { ++device.clients; }
    /// Leave the device, and release the lock if the client has it.
    ~MessageExchange();
    MessageExchange(const MessageExchange &) = delete; // the device may point to it
    MessageExchange &operator=(const MessageExchange &) = delete;

    /// Send bytes. Every line is a message. With END, the bytes after the last newline are one too.
    void write(std::string_view bytes, bool end);

    [[nodiscard]] bool hasAnswer() const { return unread() > 0; }
    /// Returns the instant from which the answer can be read; `never` while that is not known.
    [[nodiscard]] Clock::time_point answerAt() const;
    /// A part of an answer, valid until the next call.
    struct Part
    {
        std::string_view bytes;
        bool isTerminated; ///< the last byte is the termination character
        bool isLast;       ///< nothing of the answer is left
    };
    /// Take up to `count` bytes of the answer, up to the termination character if there is one.
    /// Returns nothing while the answer is not ready. Without an answer it returns nothing too, and
    /// leaves an error in the instrument's queue.
    std::optional<Part> read(std::size_t count, std::optional<char> termination);

    /// Drop the answer and an incomplete message, and end what the device is doing, as a device
    /// clear does.
    void clear();
    /// Trigger the instrument as *TRG does.
    void trigger();
    /// Returns the status byte. An answer shows in it once it can be read.
    [[nodiscard]] std::uint8_t statusByte() const;

    /// Returns the instant at which this client can use the device, as far as locks go; `never`
    /// while another client has locked it.
    [[nodiscard]] Clock::time_point freeAt() const { return device.freeAt(this); }
    /// Lock the device for this client. No other client may have it locked.
    void lock() { device.lockHolder = this; }
    /// Release the lock. Returns false when this client does not have it.
    bool unlock();

    Device &device;

private:
    void receive(std::string_view message);
    void dropAnswer();
    [[nodiscard]] std::size_t unread() const { return output.size() - outputRead; }

    std::string input; // the beginning of a message
    std::string output;
    std::size_t outputRead = 0; // bytes of the output that are already read
};

} // namespace simulator
