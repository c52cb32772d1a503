#pragma once

#include "simulator/Bench.h"
#include "simulator/server/Device.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace server {

/// The bench with all of its instruments on the network.
struct Laboratory
{
    explicit Laboratory(double timeScale);

    /// Find a device by its name in any letter case; null when there is none.
    [[nodiscard]] Device *find(const std::string &name) const;

    simulator::Bench bench; // before what refers to its instruments
    std::vector<std::unique_ptr<Device>> devices;
    std::uint32_t nextLink = 0; ///< no two links have the same number
};

} // namespace server
