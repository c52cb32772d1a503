#include "visa/lan/OpenLinks.h"

#include "visa/lan/Vxi11Link.h"

#include <cstdlib>

namespace lan {

namespace {

constexpr std::chrono::milliseconds leaveTime(1000); // for all of them

} // namespace

OpenLinks &OpenLinks::instance()
{
    static auto *const links = [] {
        std::atexit([] { instance().leaveAll(); });
        return new OpenLinks;
    }();
    return *links;
}

void OpenLinks::add(Vxi11Link *link)
{
    const std::lock_guard<std::mutex> guard(mutex);
    links.insert(link);
}

void OpenLinks::remove(Vxi11Link *link)
{
    const std::lock_guard<std::mutex> guard(mutex);
    links.erase(link);
}

void OpenLinks::leaveAll()
{
    const std::lock_guard<std::mutex> guard(mutex);
    const visa::Deadline deadline = std::chrono::steady_clock::now() + leaveTime;
    for (Vxi11Link *link : links) {
        link->leave(deadline);
    }
}

} // namespace lan
