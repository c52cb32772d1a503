#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace wire {

// External data representation (RFC 4506). Every number of RPC and VXI-11 takes one word of 32
// bits, big-endian.

/// Encode words.
std::string xdrWords(std::initializer_list<std::uint32_t> words);

/// Encode opaque bytes or a string: the length, the bytes, zeros up to a whole word.
std::string xdrOpaque(std::string_view bytes);

/// Reads a message from its front. A missing or incomplete value is read as 0 or empty; isOk() is
/// false from then on.
class XdrReader
{
public:
    /// Read a message. Its bytes must stay valid as long as the reader and the views it returns.
    explicit XdrReader(std::string_view message) : left(message) {}

    /// Read a word.
    XdrReader &operator>>(std::uint32_t &word);
    /// Read opaque bytes or a string.
    XdrReader &operator>>(std::string_view &bytes);

    /// Returns what has not been read yet.
    [[nodiscard]] std::string_view rest() const { return left; }
    /// Returns whether the message had all values that were read.
    [[nodiscard]] bool isOk() const { return ok; }

private:
    std::string_view left;
    bool ok = true;
};

} // namespace wire
