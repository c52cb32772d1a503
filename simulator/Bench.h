#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The laboratory bench: the wireless link and the instruments that look at it, just switched on.
/// One thread at a time.
class Bench
{
public:
    Bench();

    /// Find the instrument with this host name, in any letter case; null when there is none.
    [[nodiscard]] Instrument *find(std::string_view host) const;
    /// List the host names of all instruments.
    [[nodiscard]] std::vector<std::string> hosts() const;

    RadioLink &radioLink() { return link; }

private:
    RadioLink link;
    std::map<std::string, std::unique_ptr<Instrument>> instruments;
};

} // namespace simulator
