#pragma once

#include "visa/Link.h"

#include <mutex>
#include <set>

namespace lan {

class Vxi11Link;

/// The links of this process, which are destroyed when it ends: instruments have few, and some
/// never take one back.
class OpenLinks
{
public:
    /// It is never destroyed: whoever holds a link may close it after this library's own end.
    static OpenLinks &instance();

    void add(Vxi11Link *link);
    void remove(Vxi11Link *link);

private:
    OpenLinks() = default;
    void leaveAll();

    std::mutex mutex;
    std::set<Vxi11Link *> links;
};

} // namespace lan
