#include "simulator/scpi/Pattern.h"

#include <algorithm>

namespace simulator {

namespace {

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// Read the digits of a suffix, 1 for none; the value stops growing far beyond every real suffix.
std::size_t suffixValue(std::string_view digits)
{
    constexpr std::size_t enough = 100000;
    std::size_t value = 0;
    for (const char c : digits) {
        value = std::min(enough, value * 10 + static_cast<std::size_t>(c - '0'));
    }
    return digits.empty() ? 1 : value;
}

} // namespace

std::string upperCase(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

bool isSpace(char c)
{
    return static_cast<unsigned char>(c) <= 32;
}

std::string_view trimmed(std::string_view text)
{
    while (!text.empty() && isSpace(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isSpace(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

std::string shortForm(std::string_view definition)
{
    std::string result;
    std::copy_if(definition.begin(), definition.end(), std::back_inserter(result),
                 [](char c) { return c < 'a' || c > 'z'; });
    return result;
}

bool isMnemonic(std::string_view definition, std::string_view text)
{
    const std::string upper = upperCase(text);
    return upper == upperCase(definition) || upper == shortForm(definition);
}

Pattern::Pattern(std::string_view text)
{
    std::size_t slot = 0;
    bool optional = false;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find_first_of(":[]<", at), text.size());
        if (end > at) {
            const std::string_view mnemonic = text.substr(at, end - at);
            nodes.push_back({upperCase(mnemonic), shortForm(mnemonic), optional, false, 0});
        }
        if (end < text.size() && text[end] == '<') {
            const std::size_t close = text.find('>', end);
            nodes.back().suffixed = true;
            nodes.back().slot = slot;
            largest.at(slot++) = suffixValue(text.substr(end + 1, close - end - 1));
            at = close + 1;
            continue;
        }
        if (end < text.size() && text[end] != ':') {
            optional = text[end] == '[';
        }
        at = end + 1;
    }
}

Pattern::Match Pattern::match(std::string_view header, Suffixes *suffixes) const
{
    Suffixes found{1, 1};
    const Match result = matchFrom(0, header, &found);
    if (result == Match::Full) {
        *suffixes = found;
    }
    return result;
}

Pattern::Match Pattern::matchFrom(std::size_t index, std::string_view header,
                                  Suffixes *suffixes) const
{
    if (index == nodes.size()) {
        return header.empty() ? Match::Full : Match::None;
    }
    const Node &node = nodes[index];
    const std::size_t colon = header.find(':');
    std::string_view mnemonic = header.substr(0, colon);
    std::string_view digits;
    if (node.suffixed) {
        const auto last = std::find_if_not(mnemonic.rbegin(), mnemonic.rend(), isDigit);
        digits = mnemonic.substr(static_cast<std::size_t>(mnemonic.rend() - last));
        mnemonic.remove_suffix(digits.size());
    }
    // A colon with nothing after it leaves an empty node, which no mnemonic matches.
    const bool complete = colon == std::string_view::npos || colon + 1 < header.size();
    if (complete && (mnemonic == node.longForm || mnemonic == node.shortForm)) {
        const std::string_view rest =
            colon == std::string_view::npos ? std::string_view() : header.substr(colon + 1);
        const Match match = matchFrom(index + 1, rest, suffixes);
        if (match != Match::None) {
            if (!node.suffixed) {
                return match;
            }
            const std::size_t value = suffixValue(digits);
            (*suffixes)[node.slot] = value;
            return value >= 1 && value <= largest[node.slot] ? match : Match::SuffixOutOfRange;
        }
    }
    return node.optional ? matchFrom(index + 1, header, suffixes) : Match::None;
}

} // namespace simulator
