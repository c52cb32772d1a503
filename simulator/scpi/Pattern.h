#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The numeric suffixes of a header in order of appearance; a missing one counts as 1
/// (SCPI-99 volume 1, 6.2.5.2).
using Suffixes = std::array<std::size_t, 2>;

/// Turn into ASCII upper case, whatever the process locale.
std::string upperCase(std::string_view text);

/// Cut off the white space around a text.
std::string_view trimmed(std::string_view text);

/// Tell whether a text is the long or the short form of the definition, whose capitals (and
/// digits) are the short form: "SWEep" is SWE or SWEEP, in any letter case.
bool isMnemonic(std::string_view definition, std::string_view text);

/// Make the short form of a mnemonic: its capitals and digits.
std::string shortForm(std::string_view definition);

/// The header of a command as the manuals print it: "CHANnel<4>[:STATe]" has a numeric suffix of 1
/// to 4 and an optional last node.
class Pattern
{
public:
    enum class Match
    {
        None,
        SuffixOutOfRange,
        Full
    };

    explicit Pattern(std::string_view text);

    /// Compare a header without leading colon and question mark; suffixes is set on a full
    /// match only.
    Match match(std::string_view header, Suffixes *suffixes) const;

    /// Tell the greatest value of each suffix, 1 where there is none.
    [[nodiscard]] const Suffixes &largestSuffixes() const { return largest; }

private:
    struct Node
    {
        std::string mnemonic;
        bool optional = false;
        bool suffixed = false;
        std::size_t slot = 0; // of its suffix
    };

    Match matchFrom(std::size_t index, std::string_view header, Suffixes *suffixes) const;

    std::vector<Node> nodes;
    Suffixes largest{1, 1};
};

} // namespace simulator
