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

/// ASCII upper case, whatever the process locale.
std::string upperCase(std::string_view text);

/// `text` without the white space around it.
std::string_view trimmed(std::string_view text);

/// Whether `text` is the long or the short form of `definition`, whose capitals (and digits) are
/// the short form: "SWEep" is SWE or SWEEP, in any letter case.
bool isMnemonic(std::string_view definition, std::string_view text);

/// The short form of a mnemonic: its capitals and digits.
std::string shortForm(std::string_view definition);

/// The header of a command as the manuals print it: "CHANnel<4>[:STATe]" has a numeric suffix of 1
/// to 4 and an optional last node.
class ScpiPattern
{
public:
    enum class Match
    {
        None,
        SuffixOutOfRange,
        Full
    };

    explicit ScpiPattern(std::string_view text);

    /// Compares a header without leading colon and question mark; `suffixes` is set on a full
    /// match only.
    Match match(std::string_view header, Suffixes &suffixes) const;

    /// The greatest value of each suffix, 1 where there is none.
    [[nodiscard]] const Suffixes &largestSuffixes() const { return largest_; }

private:
    struct Node
    {
        std::string mnemonic;
        bool optional = false;
        bool suffixed = false;
        std::size_t slot = 0; // of its suffix
    };

    Match matchFrom(std::size_t index, std::string_view header, Suffixes &suffixes) const;

    std::vector<Node> nodes_;
    Suffixes largest_{1, 1};
};

} // namespace simulator
