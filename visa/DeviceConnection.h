#pragma once

#include "visa/Deadline.h"
#include "visa/VisaTypes.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace visa {

struct ResourceName;

/// Why a read ended without an error.
enum class ReadEnd
{
    Count,                ///< as many bytes as were asked for; there are more
    TerminationCharacter, ///< the last byte is the termination character
    End,                  ///< the last byte came with END (IEEE 488.1), whatever byte it is
};

/// The outcome of a read. Bytes may have been read before an error.
struct ReadOutcome
{
    ViStatus status = 0; ///< 0, or an error
    std::size_t count = 0;
    ReadEnd end = ReadEnd::Count;
};

/// One client's connection to one device; the destructor ends it. One thread at a time may use it.
/// A call ends by its deadline, over a network up to 0.6 s later. It returns 0 or an error, mostly
/// VI_ERROR_TMO, VI_ERROR_CONN_LOST, VI_ERROR_IO, VI_ERROR_RSRC_LOCKED or VI_ERROR_NSUP_OPER.
class DeviceConnection
{
public:
    DeviceConnection() = default;
    DeviceConnection(const DeviceConnection &) = delete;
    DeviceConnection &operator=(const DeviceConnection &) = delete;
    virtual ~DeviceConnection() = default;

    /// Write bytes, the last one with END if wanted. Sets the number written, also after an error.
    virtual ViStatus write(const ViByte *bytes, std::size_t count, bool end, Deadline deadline,
                           std::size_t *written) = 0;
    /// Read at most count bytes, up to END or the termination character, if there is one. END
    /// outranks the character, and both outrank the count.
    virtual ReadOutcome read(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                             Deadline deadline) = 0;
    /// Clear the device's input and output (IEEE 488.2 5.8).
    virtual ViStatus clear(Deadline deadline) = 0;
    /// Trigger the device (IEEE 488.1 group execute trigger, *TRG).
    virtual ViStatus trigger(Deadline deadline) = 0;
    /// Read the status byte (IEEE 488.2 11.2).
    virtual ViStatus readStatusByte(Deadline deadline, ViUInt8 *statusByte) = 0;
    /// Let the device's own controls operate it again.
    virtual ViStatus goToLocal(Deadline deadline) = 0;
    /// Lock the device for this connection. While others have locked it, wait until the deadline.
    virtual ViStatus lock(Deadline deadline) = 0;
    /// Unlock the device.
    virtual ViStatus unlock(Deadline deadline) = 0;
    /// Returns the device's IP address; empty when it has none.
    [[nodiscard]] virtual std::string address() const { return {}; }
    /// Tell the device that the connection ends, by the deadline. Another thread that waited for
    /// the connection may still make a call, which may fail.
    virtual void close(Deadline /*deadline*/) {}
};

/// Finds devices and connects to them.
class Backend
{
public:
    Backend() = default;
    Backend(const Backend &) = delete;
    Backend &operator=(const Backend &) = delete;
    virtual ~Backend() = default;

    /// Connect to a device. Returns VI_ERROR_RSRC_NFOUND when there is no such device,
    /// VI_ERROR_ALLOC when it takes no more clients, VI_ERROR_TMO or VI_ERROR_IO.
    virtual ViStatus open(const ResourceName &name, Deadline deadline,
                          std::unique_ptr<DeviceConnection> *connection) = 0;
    /// Returns the full resource strings of the devices, in the order in which viFindRsrc lists
    /// them.
    virtual std::vector<std::string> list() = 0;
};

/// Returns the backend, which is never destroyed. Each VISA library defines this function.
Backend &backend();

} // namespace visa
