#include "bench/Laboratory.h"

namespace server {

Laboratory::Laboratory(double timeScale)
{
    for (const std::string &host : bench.hosts()) {
        devices.push_back(std::make_unique<Device>(host, *bench.find(host), timeScale));
    }
}

Device *Laboratory::find(const std::string &name) const
{
    for (const auto &device : devices) {
        if (simulator::upperCase(device->name) == simulator::upperCase(name)) {
            return device.get();
        }
    }
    return nullptr;
}

} // namespace server
