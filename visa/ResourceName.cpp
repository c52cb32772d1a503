#include "visa/ResourceName.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <vector>

namespace visa {

namespace {

constexpr std::size_t maximumLength = VI_FIND_BUFLEN - 1; // a client's buffer has a zero byte, too

constexpr std::array<std::pair<std::string_view, ViUInt16>, 7> interfaces{{
    {"TCPIP", VI_INTF_TCPIP},
    {"GPIB-VXI", VI_INTF_GPIB_VXI},
    {"GPIB", VI_INTF_GPIB},
    {"ASRL", VI_INTF_ASRL},
    {"USB", VI_INTF_USB},
    {"PXI", VI_INTF_PXI},
    {"VXI", VI_INTF_VXI},
}};

constexpr std::array<std::string_view, 6> classes{"INSTR",  "SOCKET",    "INTFC",
                                                  "MEMACC", "BACKPLANE", "SERVANT"};

std::string upperCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](char c) {
        return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return result;
}

bool parseNumber(std::string_view text, ViUInt16 *value)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), *value);
    return error == std::errc() && end == text.data() + text.size();
}

/// Returns whether a text can be a host name, an address or a device name such as "gpib0,5".
bool isName(std::string_view text)
{
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               std::string_view("-._,").find(c) != std::string_view::npos;
    });
}

std::vector<std::string> splitAtDoubleColons(std::string_view text)
{
    std::vector<std::string> parts;
    for (std::size_t at = text.find("::"); at != std::string_view::npos; at = text.find("::")) {
        parts.emplace_back(text.substr(0, at));
        text.remove_prefix(at + 2);
    }
    parts.emplace_back(text);
    return parts;
}

/// Parse an interface such as "TCPIP0"; a missing number is 0.
bool parseInterface(const std::string &text, ResourceName *name)
{
    for (const auto &[interface, type] : interfaces) {
        if (text.compare(0, interface.size(), interface) == 0) {
            name->interfaceType = type;
            name->full = interface;
            return text.size() == interface.size() ||
                   parseNumber(std::string_view(text).substr(interface.size()), &name->board);
        }
    }
    return false;
}

} // namespace

std::optional<ResourceName> parseResourceName(const std::string &text)
{
    std::vector<std::string> parts = splitAtDoubleColons(text.substr(0, maximumLength + 1));
    ResourceName name;
    if (!parseInterface(upperCase(parts.front()), &name)) {
        return std::nullopt;
    }
    parts.erase(parts.begin());
    name.resourceClass = parts.empty() ? std::string() : upperCase(parts.back());
    if (std::find(classes.begin(), classes.end(), name.resourceClass) != classes.end()) {
        parts.pop_back();
    } else {
        name.resourceClass = "INSTR";
    }
    if (!std::all_of(parts.begin(), parts.end(), isName)) {
        return std::nullopt;
    }
    if (name.interfaceType == VI_INTF_TCPIP) {
        const bool isSocket = name.resourceClass == "SOCKET";
        if (!isSocket && parts.size() == 1) {
            parts.emplace_back("inst0");
        }
        ViUInt16 port = 0;
        if (parts.size() != 2 || (isSocket && !parseNumber(parts[1], &port))) {
            return std::nullopt;
        }
        name.host = parts[0];
        name.device = parts[1];
    }
    name.full += std::to_string(name.board);
    for (const std::string &part : parts) {
        name.full += "::" + part;
    }
    name.full += "::" + name.resourceClass;
    if (name.full.size() > maximumLength) {
        return std::nullopt;
    }
    return name;
}

} // namespace visa
