#include "visa/StatusText.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace visa {

namespace {

struct Status
{
    ViStatus code;
    const char *name;
    const char *text;
};

constexpr std::array statuses{
#define VISA_STATUS(name, pattern, text) Status{name, #name, text},
#include "visa/StatusCodes.def"
#undef VISA_STATUS
};

/// Returns the row of a code, or null.
const Status *find(ViStatus code)
{
    const auto *row = std::find_if(statuses.begin(), statuses.end(),
                                   [=](const Status &status) { return status.code == code; });
    return row != statuses.end() ? row : nullptr;
}

std::string pattern(ViStatus status)
{
    std::array<char, 12> text{};
    std::snprintf(text.data(), text.size(), "0x%08X", static_cast<ViUInt32>(status));
    return text.data();
}

} // namespace

std::string statusText(ViStatus status, bool *known)
{
    const Status *row = find(status);
    *known = row != nullptr;
    return row != nullptr ? row->text : "Unknown status " + pattern(status) + ".";
}

std::string statusName(ViStatus status)
{
    const Status *row = find(status);
    return row != nullptr ? row->name : pattern(status);
}

} // namespace visa
