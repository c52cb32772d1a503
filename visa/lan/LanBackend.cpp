#include "visa/lan/HostsFile.h"
#include "visa/lan/Vxi11Link.h"
#include "visa/ResourceName.h"
#include "visa/wire/Portmapper.h"

#include <QHostAddress>
#include <QHostInfo>

namespace lan {

namespace {

/// What connecting may take when the caller gives it no time, as some do with every instrument.
constexpr std::chrono::seconds usualConnectTime(5);

/// Look a host up. For a name that takes as long as the system's resolver does: no deadline ends
/// it.
QList<QHostAddress> addressesOf(const std::string &host)
{
    const QString name = QString::fromStdString(host);
    const QHostAddress address(name);
    return address.isNull() ? QHostInfo::fromName(name).addresses() : QList<QHostAddress>{address};
}

/// VXI-11 instruments of the local network.
class LanBackend final : public visa::Backend
{
public:
    ViStatus open(const visa::ResourceName &name, visa::Deadline deadline,
                  std::unique_ptr<visa::Link> *link) override
    {
        const visa::Deadline now = std::chrono::steady_clock::now();
        const visa::Deadline until = deadline > now ? deadline : now + usualConnectTime;
        ViStatus status = VI_ERROR_RSRC_NFOUND;
        for (const QHostAddress &address : addressesOf(name.host)) {
            auto opened = std::make_unique<Vxi11Link>();
            status = opened->open(address, wire::portmapperPort, name.device, until);
            if (status == VI_SUCCESS) {
                *link = std::move(opened);
                break;
            }
        }
        return status;
    }

    std::vector<std::string> list() override { return hostsFileResources(); }
};

} // namespace

} // namespace lan

visa::Backend &visa::backend()
{
    // Never destroyed: other threads may use it until the process has ended.
    static auto *const backend = new lan::LanBackend;
    return *backend;
}
