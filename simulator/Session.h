#pragma once

#include "instrument/VisaTypes.h"
#include "simulator/Instrument.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace simulator {

/// One client's connection to an instrument: its time-out, its unread answer and the buffer of its
/// formatted reads. Settings are the instrument's and shared between sessions. The operations
/// return VISA statuses.
class Session
{
public:
    Session(Instrument &instrument, ViSession manager) : instrument_(&instrument), manager_(manager)
    {
    }

    /// The resource manager that opened this session.
    [[nodiscard]] ViSession manager() const { return manager_; }

    /// Sends bytes, the last with END: every line is a message, and so is what follows the last.
    ViStatus write(std::string_view bytes);
    /// Takes up to `count` bytes of the answer (into `bytes`, valid until the next operation):
    /// VI_SUCCESS at the answer's end, VI_SUCCESS_MAX_CNT before it, VI_ERROR_TMO without one.
    ViStatus read(std::size_t count, std::string_view &bytes);
    /// The same into a file, which is truncated first, whatever there is to read.
    ViStatus readToFile(const char *fileName, std::size_t count, std::size_t &returnedCount);
    /// Drops the answer, as a device clear does.
    void clear();

    ViStatus setAttribute(ViAttr attribute, ViAttrState value);
    ViStatus getAttribute(ViAttr attribute, void *value) const;
    ViStatus controlRemote(ViUInt16 mode);
    /// Bits of IEEE 488.2 11.2: 4 message available, and SCPI's 2 error queue not empty.
    [[nodiscard]] ViUInt16 statusByte() const;

    /// Moves the answer into the buffer of formatted reads unless that still holds text, and
    /// returns that buffer; VI_ERROR_TMO when both are empty.
    ViStatus fillScanBuffer(std::string *&buffer);

private:
    void receive(std::string_view message);
    [[nodiscard]] std::size_t unread() const { return output_.size() - outputRead_; }

    Instrument *instrument_;
    ViSession manager_;
    ViUInt32 timeoutMs_ = 2000;
    std::string output_;
    std::size_t outputRead_ = 0; // bytes of the output that are already read
    std::string scanBuffer_;
};

} // namespace simulator
