#pragma once

#include "simulator/Instrument.h"
#include "simulator/LinkModel.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace simulator {

/// The laboratory bench: the wireless link and the instruments that look at it.
class Bench
{
public:
    Bench();

    /// The instrument with this host name in lower case, null when there is none.
    [[nodiscard]] Instrument *find(std::string_view host) const;

    LinkModel &link() { return link_; }

private:
    LinkModel link_; // outlives the instruments, which refer to it
    std::map<std::string, std::unique_ptr<Instrument>, std::less<>> instruments_;
};

/// The bench behind the VISA functions of this process. They lock it while they run; other callers
/// use it between their calls.
Bench &bench();

} // namespace simulator
