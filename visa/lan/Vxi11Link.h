#pragma once

#include "visa/lan/RpcClient.h"
#include "visa/Link.h"
#include "visa/VisaTypes.h"
#include "visa/wire/Vxi11.h"

#include <QHostAddress>

#include <atomic>
#include <mutex>
#include <string>
#include <unistd.h>

namespace lan {

/// A link to a device by VXI-11. It is destroyed with the object, and when the process ends.
class Vxi11Link final : public visa::Link
{
public:
    Vxi11Link();
    ~Vxi11Link() override;

    /// Find the core channel's port with the portmapper at `mapperPort`, connect, create the link.
    /// VI_ERROR_TMO; VI_ERROR_RSRC_NFOUND when there is no such device; VI_ERROR_ALLOC when it has
    /// no link left.
    ViStatus open(const QHostAddress &address, std::uint16_t mapperPort, const std::string &device,
                  visa::Deadline deadline);
    /// Destroy the link unless a call is on its way, or it is another process's.
    void leave(visa::Deadline deadline);

    ViStatus write(const ViByte *bytes, std::size_t count, bool end, visa::Deadline deadline,
                   std::size_t *written) override;
    visa::ReadOutcome read(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                           visa::Deadline deadline) override;
    ViStatus clear(visa::Deadline deadline) override;
    ViStatus trigger(visa::Deadline deadline) override;
    ViStatus readStatusByte(visa::Deadline deadline, ViUInt8 *statusByte) override;
    ViStatus controlRemote(ViUInt16 mode, visa::Deadline deadline) override;
    ViStatus lock(visa::Deadline deadline) override;
    ViStatus unlock(visa::Deadline deadline) override;
    [[nodiscard]] std::string address() const override;

private:
    ViStatus call(wire::vxi11::Procedure procedure, std::string_view arguments,
                  visa::Deadline answer, std::string_view *results);
    ViStatus callGeneric(wire::vxi11::Procedure procedure, visa::Deadline deadline,
                         std::string_view *results = nullptr);
    ViStatus fetch(std::size_t count, std::optional<ViByte> termination, visa::Deadline deadline);
    bool handOut(ViByte *buffer, std::size_t count, std::optional<ViByte> termination,
                 visa::ReadOutcome *outcome);
    void keepRest();
    void forget();

    RpcClient rpc;
    QHostAddress host;
    std::mutex calling; // for the process's end, which other threads do not wait for
    const pid_t process = getpid();
    std::atomic<bool> isOpen = false;
    std::uint32_t id = 0; // every number is a link's, 0 too
    std::uint32_t receiveSize = 0;
    std::string fetched;       // from the device,
    std::size_t handedOut = 0; // so much of it to the caller
    bool fetchedEnd = false;
};

} // namespace lan
