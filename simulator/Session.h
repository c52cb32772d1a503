#pragma once

#include "instrument/VisaTypes.h"
#include "simulator/Attributes.h"
#include "simulator/Instrument.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace simulator {

/// One client's connection to an instrument: its attributes, what of a message has come so far, its
/// unread answer and the buffer of its formatted reads. Settings are the instrument's. The
/// operations return VISA statuses.
class Session
{
public:
    Session(Instrument &instrument, Attributes attributes)
        : instrument_(&instrument), attributes_(std::move(attributes))
    {
    }

    Attributes &attributes() { return attributes_; }
    [[nodiscard]] const Attributes &attributes() const { return attributes_; }

    /// Sends bytes: every line is a message, and so is what follows the last, unless the last byte
    /// goes without END (VI_ATTR_SEND_END_EN).
    ViStatus write(std::string_view bytes);
    /// Takes up to `count` bytes of the answer (into `bytes`, valid until the next operation):
    /// VI_SUCCESS at the answer's end; before it VI_SUCCESS_TERM_CHAR at an enabled termination
    /// character, otherwise VI_SUCCESS_MAX_CNT; VI_ERROR_TMO without an answer.
    ViStatus read(std::size_t count, std::string_view &bytes);
    /// Drops the answer and an incomplete message, as a device clear does.
    void clear();

    ViStatus controlRemote(ViUInt16 mode);
    /// Bits of IEEE 488.2 11.2: 4 message available, and SCPI's 2 error queue not empty.
    [[nodiscard]] ViUInt16 statusByte() const;

    /// Moves the answer into the buffer of formatted reads unless that still holds text, and
    /// returns that buffer; VI_ERROR_TMO when both are empty.
    ViStatus fillScanBuffer(std::string *&buffer);

private:
    void receive(std::string_view message);
    void dropAnswer();
    [[nodiscard]] std::size_t unread() const { return output_.size() - outputRead_; }

    Instrument *instrument_;
    Attributes attributes_;
    std::string input_; // the beginning of a message
    std::string output_;
    std::size_t outputRead_ = 0; // bytes of the output that are already read
    std::string scanBuffer_;
};

} // namespace simulator
