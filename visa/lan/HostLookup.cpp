#include "visa/lan/HostLookup.h"

#include <array>
#include <future>
#include <netdb.h>
#include <sys/socket.h>
#include <thread>

namespace lan {

namespace {

/// Ask the system's resolver.
std::vector<std::string> lookUp(const std::string &host, int flags)
{
    addrinfo hints{};
    hints.ai_flags = flags;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *list = nullptr;
    std::vector<std::string> addresses;
    if (::getaddrinfo(host.c_str(), nullptr, &hints, &list) != 0) {
        return addresses;
    }
    for (const addrinfo *entry = list; entry != nullptr; entry = entry->ai_next) {
        std::array<char, NI_MAXHOST> text{};
        if (::getnameinfo(entry->ai_addr, entry->ai_addrlen, text.data(), text.size(), nullptr, 0,
                          NI_NUMERICHOST) == 0) {
            addresses.emplace_back(text.data());
        }
    }
    ::freeaddrinfo(list);
    return addresses;
}

} // namespace

std::optional<std::vector<std::string>> addressesOf(const std::string &host,
                                                    visa::Deadline deadline)
{
    std::vector<std::string> numeric = lookUp(host, AI_NUMERICHOST); // without asking a server
    if (!numeric.empty()) {
        return numeric;
    }
    // The resolver takes no deadline. So it runs in a thread that may outlast this call.
    std::packaged_task<std::vector<std::string>()> task([host] { return lookUp(host, 0); });
    std::future<std::vector<std::string>> addresses = task.get_future();
    std::thread(std::move(task)).detach();
    const bool hasEnded = addresses.wait_until(deadline) == std::future_status::ready;
    return hasEnded ? std::optional(addresses.get()) : std::nullopt;
}

} // namespace lan
