#pragma once

#include "simulator/Device.h"
#include "simulator/RadioLink.h"

#include <memory>
#include <string_view>
#include <vector>

namespace simulator {

/// The bench, just switched on: the radio link and the instruments that observe it. Only one thread
/// may use it at a time.
class Bench
{
public:
    /// The time scale is that of the devices.
    explicit Bench(double timeScale = 0.0);

    /// Find a device by its name, in any letter case; null when there is none.
    [[nodiscard]] Device *find(std::string_view name) const;
    /// Returns all devices, in the order of the table in docs/simulated-bench.md.
    [[nodiscard]] const std::vector<std::unique_ptr<Device>> &devices() const { return all; }

    RadioLink &radioLink() { return link; }

private:
    RadioLink link;
    std::vector<std::unique_ptr<Device>> all;
};

} // namespace simulator
