#include "simulator/ResourceName.h"

#include <algorithm>
#include <vector>

namespace simulator {

namespace {

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

bool isNumber(std::string_view text)
{
    return text.find_first_not_of("0123456789") == std::string_view::npos;
}

/// A host name, an IPv4 address or the name of a LAN device.
bool isName(std::string_view text)
{
    constexpr std::string_view allowed = "abcdefghijklmnopqrstuvwxyz0123456789-._";
    return !text.empty() && text.find_first_not_of(allowed) == std::string_view::npos;
}

std::vector<std::string> splitAtDoubleColons(const std::string &text)
{
    std::vector<std::string> parts;
    std::size_t start = 0;
    for (std::size_t at = text.find("::"); at != std::string::npos; at = text.find("::", start)) {
        parts.push_back(text.substr(start, at - start));
        start = at + 2;
    }
    parts.push_back(text.substr(start));
    return parts;
}

} // namespace

std::optional<ResourceName> parseResourceName(std::string_view text)
{
    constexpr std::string_view interface = "tcpip";
    const std::vector<std::string> parts = splitAtDoubleColons(lowerCase(text));
    if (parts.size() < 3 || parts.size() > 4 || parts.back() != "instr" ||
        parts[0].compare(0, interface.size(), interface) != 0 ||
        !isNumber(std::string_view(parts[0]).substr(interface.size()))) {
        return std::nullopt;
    }
    const std::string device = parts.size() == 4 ? parts[2] : "inst0";
    if (!isName(parts[1]) || !isName(device)) {
        return std::nullopt;
    }
    return ResourceName{parts[1], device};
}

} // namespace simulator
