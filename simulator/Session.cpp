#include "simulator/Session.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::size_t inputBufferSize = 65536;

constexpr ViUInt16 errorAvailable = 0x04;
constexpr ViUInt16 messageAvailable = 0x10;

/// Modes of viGpibControlREN (VPP-4.3, table 6.5.1).
enum RemoteMode : ViUInt16
{
    Deassert = 0,
    Assert = 1,
    DeassertAndLocal = 2,
    AssertAndAddress = 3,
    AssertAndLockOut = 4,
    AssertAddressAndLockOut = 5,
    AddressAndLocal = VI_GPIB_REN_ADDRESS_GTL,
};

} // namespace

ViStatus Session::write(std::string_view bytes)
{
    if (bytes.empty()) {
        return VI_SUCCESS;
    }
    instrument_->setRemote(true);
    scanBuffer_.clear(); // what a formatted read left over belongs to the answer before
    while (!bytes.empty()) {
        const std::size_t newline = bytes.find('\n');
        const bool isComplete =
            newline != std::string_view::npos || attributes_.number(VI_ATTR_SEND_END_EN) != 0;
        const std::string_view line = bytes.substr(0, newline);
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        // One byte too many is kept, as the sign of an overrun.
        input_ += line.substr(0, inputBufferSize + 1 - input_.size());
        if (isComplete) {
            receive(std::exchange(input_, {}));
        }
    }
    return VI_SUCCESS;
}

void Session::receive(std::string_view message)
{
    if (trimmed(message).empty()) {
        return;
    }
    if (unread() > 0) {
        instrument_->errors().push(scpi::queryInterrupted); // IEEE 488.2 6.3.2.3
        dropAnswer();
    }
    if (message.size() > inputBufferSize) {
        instrument_->errors().push(scpi::inputBufferOverrun);
        return;
    }
    output_ = instrument_->execute(message);
    outputRead_ = 0;
}

ViStatus Session::read(std::size_t count, std::string_view &bytes)
{
    if (unread() == 0) {
        bytes = {};
        return VI_ERROR_TMO;
    }
    bytes = std::string_view(output_).substr(outputRead_, count);
    bool isTerminated = false;
    if (attributes_.number(VI_ATTR_TERMCHAR_EN) != 0) {
        const auto terminator = static_cast<char>(attributes_.number(VI_ATTR_TERMCHAR));
        const std::size_t at = bytes.find(terminator);
        isTerminated = at != std::string_view::npos;
        bytes = isTerminated ? bytes.substr(0, at + 1) : bytes;
    }
    outputRead_ += bytes.size();
    if (unread() == 0) {
        return VI_SUCCESS; // END counts more than a termination character (VPP-4.3, viRead)
    }
    return isTerminated ? VI_SUCCESS_TERM_CHAR : VI_SUCCESS_MAX_CNT;
}

void Session::clear()
{
    input_.clear();
    dropAnswer();
}

void Session::dropAnswer()
{
    output_.clear();
    output_.shrink_to_fit(); // an answer can be megabytes
    outputRead_ = 0;
    scanBuffer_.clear();
}

ViStatus Session::controlRemote(ViUInt16 mode)
{
    switch (mode) {
    case Deassert:
    case DeassertAndLocal:
    case AddressAndLocal:
        instrument_->setRemote(false);
        return VI_SUCCESS;
    case AssertAndAddress:
    case AssertAddressAndLockOut:
        instrument_->setRemote(true);
        return VI_SUCCESS;
    case Assert: // an instrument turns remote when it is addressed, not before
    case AssertAndLockOut:
        return VI_SUCCESS;
    default:
        return VI_ERROR_INV_MODE;
    }
}

ViUInt16 Session::statusByte() const
{
    const unsigned message = unread() > 0 ? messageAvailable : 0U;
    const unsigned error = instrument_->errors().isEmpty() ? 0U : errorAvailable;
    return static_cast<ViUInt16>(message | error);
}

ViStatus Session::fillScanBuffer(std::string *&buffer)
{
    buffer = &scanBuffer_;
    if (!scanBuffer_.empty()) {
        return VI_SUCCESS;
    }
    std::string_view bytes;
    const ViStatus status = read(unread(), bytes);
    scanBuffer_ = bytes;
    return std::min(status, VI_SUCCESS); // a termination character is no news here
}

} // namespace simulator
