#pragma once

#include "simulator/scpi/Instrument.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace simulator {

/// One client's connection to an instrument: what of a message has come so far and the unread
/// answer. Everything else is the instrument's, which all of its clients share.
class Client
{
public:
    explicit Client(Instrument &instrument) : instrument(instrument) {}

    /// Send bytes: every line is a message, and with END so is what follows the last.
    void write(std::string_view bytes, bool end);

    /// A part of an answer, valid until the next call.
    struct Part
    {
        std::string_view bytes;
        bool isLast; ///< nothing of the answer is left
    };
    /// Take up to count bytes of the answer, up to the termination character if there is one.
    /// Nothing when there is no answer, which is an error of the client's.
    std::optional<Part> read(std::size_t count, std::optional<char> termination);
    [[nodiscard]] bool hasAnswer() const { return unread() > 0; }

    /// Drop the answer and an incomplete message, as a device clear does.
    void clear();
    /// Trigger the instrument as *TRG does.
    void trigger() { instrument.execute("*TRG"); }
    [[nodiscard]] std::uint8_t statusByte() const { return instrument.statusByte(hasAnswer()); }
    void setRemote(bool on) { instrument.setRemote(on); }

private:
    void receive(std::string_view message);
    void dropAnswer();
    [[nodiscard]] std::size_t unread() const { return output.size() - outputRead; }

    Instrument &instrument;
    std::string input; // the beginning of a message
    std::string output;
    std::size_t outputRead = 0; // bytes of the output that are already read
};

} // namespace simulator
