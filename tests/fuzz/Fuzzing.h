#pragma once

#include "tests/TestFiles.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

// The entry points that libFuzzer calls: the first once, where a target has it.
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv);
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

/// What must hold for every input. Where it does not, the input is a finding.
inline void require(bool holds, const char *what)
{
    if (!holds) {
        std::fprintf(stderr, "Does not hold: %s\n", what);
        std::abort();
    }
}

/// An input of the fuzzer, taken from its start in parts; what it lacks at its end is zero.
class Input
{
public:
    Input(const std::uint8_t *data, std::size_t size)
        : bytes(reinterpret_cast<const char *>(data), static_cast<int>(size))
    {
    }

    [[nodiscard]] bool isEmpty() const { return position == bytes.size(); }

    /// A value of a plain type, in the host's byte order.
    template <typename Value>
    Value take()
    {
        const QByteArray part = takeBytes(sizeof(Value));
        Value value{};
        std::memcpy(&value, part.constData(), static_cast<std::size_t>(part.size()));
        return value;
    }

    QByteArray takeBytes(int count)
    {
        QByteArray part = bytes.mid(position, count);
        position += part.size();
        return part;
    }

    QByteArray takeRest() { return takeBytes(bytes.size() - position); }

private:
    QByteArray bytes;
    int position = 0;
};

inline void writeFile(const QString &name, const QByteArray &bytes)
{
    require(write(name, bytes), "the fuzzer can write its file");
}

inline QByteArray readFile(const QString &name)
{
    require(QFile::exists(name), "the fuzzer can read its file");
    return contents(name);
}
