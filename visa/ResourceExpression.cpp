#include "visa/ResourceExpression.h"

#include <re2/re2.h>

namespace visa {

namespace {

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
