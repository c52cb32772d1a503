#pragma once

#include "visa/DeviceConnection.h"
#include "visa/lan/RpcClient.h"
#include "visa/VisaTypes.h"
#include "visa/wire/Vxi11.h"

#include <string>
#include <unistd.h>

namespace lan {

/// A link to a device by VXI-11. A child process does not destroy the links of its parent.
class Vxi11Link final : public visa::DeviceConnection
{
public:
    Vxi11Link() = default;
    ~Vxi11Link() override;

    /// Ask the portmapper at `mapperPort` for the core channel, connect and create the link.
    /// Returns VI_ERROR_TMO; VI_ERROR_RSRC_NFOUND when there is no such device; VI_ERROR_ALLOC when
    /// it has no link left or the process has too many open files; VI_ERROR_IO for other errors.
    ViStatus open(const std::string &address, std::uint16_t mapperPort, const std::string &device,
                  visa::Deadline deadline);

    ViStatus write(const ViByte *bytes, std::size_t count, bool end, visa::Deadline deadline,
                   std::size_t *written) override;
    visa::ReadOutcome read(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                           visa::Deadline deadline) override;
    ViStatus clear(visa::Deadline deadline) override;
    ViStatus trigger(visa::Deadline deadline) override;
    ViStatus readStatusByte(visa::Deadline deadline, ViUInt8 *statusByte) override;
    ViStatus goToLocal(visa::Deadline deadline) override;
    ViStatus lock(visa::Deadline deadline) override;
    ViStatus unlock(visa::Deadline deadline) override;
    [[nodiscard]] std::string address() const override { return host; }
    void close(visa::Deadline deadline) override;

private:
    ViStatus call(wire::vxi11::Procedure procedure, std::string_view arguments,
                  visa::Deadline answerDeadline, std::string_view *results = nullptr);
    ViStatus callGeneric(wire::vxi11::Procedure procedure, visa::Deadline deadline,
                         std::string_view *results = nullptr);
    ViStatus fetch(std::size_t count, std::optional<ViByte> termination, visa::Deadline deadline);
    bool handOut(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                 visa::ReadOutcome *outcome);
    void keepRest();
    void forget();

    RpcClient rpc;
    std::string host;
    const pid_t process = getpid();
    bool isOpen = false;
    std::uint32_t id = 0; // any number may be a link's, 0 too
    std::uint32_t receiveSize = 0;
    int refusals = 0;         // refused calls in a row, counted up to mostPauseSteps
    std::string_view fetched; // received from the device, and not yet handed out
    bool fetchedEnd = false;  // its last byte came with END
    std::string kept;         // the bytes of `fetched`, from one read to the next
};

} // namespace lan
