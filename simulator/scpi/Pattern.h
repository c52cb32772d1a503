#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// The numeric suffixes of a header in order of appearance. A suffix left out counts as 1
/// (SCPI-99 volume 1, 6.2.5.2).
using Suffixes = std::array<std::size_t, 2>;

/// Returns the text in ASCII upper case, whatever the process locale.
std::string upperCase(std::string_view text);

/// Returns whether a character is white space: any code from 0 to 32 (IEEE 488.2 7.4.1.2). The
/// newline is never seen, since it ends a message.
bool isSpace(char c);

/// Returns the text without white space at both ends.
std::string_view trimmed(std::string_view text);

/// Returns whether a text is the long or the short form of a mnemonic, in any letter case. The
/// capitals and digits of the definition are the short form: "SWEep" matches SWE and SWEEP.
bool isMnemonic(std::string_view definition, std::string_view text);

/// Returns the short form of a mnemonic: its capitals and digits.
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

    /// Compare a header in upper case, without its leading colon and question mark. Sets suffixes
    /// on a full match only.
    Match match(std::string_view header, Suffixes *suffixes) const;

    /// Returns the greatest value of each suffix, 1 where there is none.
    [[nodiscard]] const Suffixes &largestSuffixes() const { return largest; }

private:
    struct Node
    {
        std::string longForm;
        std::string shortForm;
        bool optional = false;
        bool suffixed = false;
        std::size_t slot = 0; // of its suffix
    };

    Match matchFrom(std::size_t index, std::string_view header, Suffixes *suffixes) const;

    std::vector<Node> nodes;
    Suffixes largest{1, 1};
};

} // namespace simulator
