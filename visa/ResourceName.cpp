#include "visa/ResourceName.h"

#include <re2/re2.h>

namespace visa {

namespace {

constexpr std::size_t maximumLength = VI_FIND_BUFLEN - 1; // a client's buffer has a zero byte, too

/// Returns an expression of viFindRsrc in the syntax of RE2.
std::string re2Expression(const std::string &expression)
{
    std::string result;
    bool inList = false;
    for (std::size_t at = 0; at < expression.size(); ++at) {
        const char c = expression[at];
        if (c == '[' || c == ']') {
            inList = c == '[';
        }
        if (c == '\\' && !inList && at + 1 < expression.size()) {
            result += RE2::QuoteMeta(expression.substr(++at, 1));
        } else if (c == '?' && !inList) {
            result += '.';
        } else if ((c == '.' || c == '^' || c == '$') && !inList) {
            result.append(1, '\\').append(1, c);
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace

std::optional<ResourceName> parseResourceName(const std::string &text)
{
    const RE2 pattern(R"((?i)\s*TCPIP(\d{0,5})::([-\w.]+)(?:::([-\w.,]+))??(?:::INSTR)?\s*)");
    std::string board;
    ResourceName name;
    if (!RE2::FullMatch(text, pattern, &board, &name.host, &name.device)) {
        return std::nullopt;
    }
    const int number = board.empty() ? 0 : std::stoi(board);
    name.board = static_cast<ViUInt16>(number);
    if (name.device.empty()) {
        name.device = "inst0";
    }
    name.full =
        "TCPIP" + std::to_string(number) + "::" + name.host + "::" + name.device + "::INSTR";
    if (name.board != number || name.full.size() > maximumLength) {
        return std::nullopt;
    }
    return name;
}

std::optional<bool> matchesExpression(const std::string &expression, const std::string &text)
{
    RE2::Options options(RE2::Latin1);
    options.set_case_sensitive(false);
    options.set_dot_nl(true);
    options.set_log_errors(false);
    const RE2 compiled(re2Expression(expression), options);
    const bool hasConditions = expression.find_first_of("{}") != std::string::npos;
    if (!compiled.ok() || hasConditions) {
        return std::nullopt;
    }
    return RE2::FullMatch(text, compiled);
}

} // namespace visa
