#include "simulator/ResourceName.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string_view>
#include <vector>

namespace simulator {

namespace {

constexpr std::size_t longest = VI_FIND_BUFLEN - 1; // what a client's buffer holds

std::string lowerCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return result;
}

bool parseBoard(std::string_view text, ViUInt16 &board)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), board);
    return text.empty() || (error == std::errc() && end == text.data() + text.size());
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

std::optional<ResourceName> parseResourceName(const char *text)
{
    constexpr std::string_view interface = "tcpip";
    const std::vector<std::string> parts =
        splitAtDoubleColons(lowerCase({text, strnlen(text, longest + 1)}));
    ResourceName name;
    if (parts.size() < 3 || parts.size() > 4 || parts.back() != "instr" ||
        parts[0].compare(0, interface.size(), interface) != 0 ||
        !parseBoard(std::string_view(parts[0]).substr(interface.size()), name.board)) {
        return std::nullopt;
    }
    name.host = parts[1];
    if (parts.size() == 4) {
        name.device = parts[2];
    }
    if (!isName(name.host) || !isName(name.device) || resourceString(name).size() > longest) {
        return std::nullopt;
    }
    return name;
}

std::string resourceString(const ResourceName &name)
{
    return "TCPIP" + std::to_string(name.board) + "::" + name.host + "::" + name.device + "::INSTR";
}

} // namespace simulator
