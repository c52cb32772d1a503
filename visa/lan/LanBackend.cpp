#include "visa/lan/HostLookup.h"
#include "visa/lan/Vxi11Link.h"
#include "visa/ResourceName.h"
#include "visa/wire/Portmapper.h"

namespace lan {

namespace {

/// Connects to VXI-11 instruments on the network.
class LanBackend final : public visa::Backend
{
public:
    ViStatus open(const visa::ResourceName &name, visa::Deadline deadline,
                  std::unique_ptr<visa::DeviceConnection> *connection) override
    {
        const auto addresses = addressesOf(name.host, deadline);
        if (!addresses) {
            return VI_ERROR_TMO;
        }
        ViStatus status = VI_ERROR_RSRC_NFOUND;
        for (const std::string &address : *addresses) {
            auto opened = std::make_unique<Vxi11Link>();
            status = opened->open(address, wire::portmapperPort, name.device, deadline);
            if (status == VI_SUCCESS) {
                *connection = std::move(opened);
                break;
            }
        }
        return status;
    }

    /// Lists nothing: the operator knows where the instruments are.
    std::vector<std::string> list() override { return {}; }
};

} // namespace

} // namespace lan

visa::Backend &visa::backend()
{
    // Never destroyed, since other threads may use it until the process has ended.
    static auto *const backend = new lan::LanBackend;
    return *backend;
}
