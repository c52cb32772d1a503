#include "visa/wire/Xdr.h"

#include <algorithm>

namespace wire {

namespace {

constexpr std::size_t wordSize = 4;

std::size_t padding(std::size_t count)
{
    return (wordSize - count % wordSize) % wordSize;
}

} // namespace

std::string xdrWords(std::initializer_list<std::uint32_t> words)
{
    std::string bytes;
    bytes.reserve(words.size() * wordSize);
    for (const std::uint32_t word : words) {
        for (const unsigned shift : {24U, 16U, 8U, 0U}) {
            bytes.push_back(static_cast<char>(word >> shift & 0xFF));
        }
    }
    return bytes;
}

std::string xdrOpaque(std::string_view bytes)
{
    std::string encoded = xdrWords({static_cast<std::uint32_t>(bytes.size())});
    encoded.reserve(encoded.size() + bytes.size() + padding(bytes.size()));
    return encoded.append(bytes).append(padding(bytes.size()), '\0');
}

XdrReader &XdrReader::operator>>(std::uint32_t &word)
{
    word = 0;
    ok = ok && left.size() >= wordSize;
    if (ok) {
        for (const char byte : left.substr(0, wordSize)) {
            word = word << 8 | static_cast<unsigned char>(byte);
        }
        left.remove_prefix(wordSize);
    }
    return *this;
}

XdrReader &XdrReader::operator>>(std::string_view &bytes)
{
    std::uint32_t count = 0;
    *this >> count;
    ok = ok && count <= left.size();
    bytes = left.substr(0, ok ? count : 0);
    // Some senders leave out the zeros at the end.
    left.remove_prefix(std::min(bytes.size() + padding(bytes.size()), left.size()));
    return *this;
}

} // namespace wire
