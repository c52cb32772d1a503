#include "simulator/Client.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr std::size_t inputBufferSize = 65536;

} // namespace

void Client::write(std::string_view bytes, bool end)
{
    if (!bytes.empty()) {
        instrument.setRemote(true);
    }
    while (!bytes.empty()) {
        const std::size_t newline = bytes.find('\n');
        const std::string_view line = bytes.substr(0, newline);
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        // One byte too many is kept, as the sign of an overrun.
        input += line.substr(0, inputBufferSize + 1 - input.size());
        if (newline != std::string_view::npos || end) {
            receive(std::exchange(input, {}));
        }
    }
}

void Client::receive(std::string_view message)
{
    if (trimmed(message).empty()) {
        return;
    }
    if (hasAnswer()) {
        instrument.report(scpi::queryInterrupted); // IEEE 488.2 6.3.2.3
        dropAnswer();
    }
    if (message.size() > inputBufferSize) {
        instrument.report(scpi::inputBufferOverrun);
        return;
    }
    output = instrument.execute(message);
    outputRead = 0;
}

std::optional<Client::Part> Client::read(std::size_t count, std::optional<char> termination)
{
    if (!hasAnswer()) {
        instrument.report(scpi::queryUnterminated); // IEEE 488.2 6.3.2.2
        return std::nullopt;
    }
    std::string_view bytes = std::string_view(output).substr(outputRead, count);
    if (termination) {
        bytes = bytes.substr(0, std::min(bytes.find(*termination), bytes.size() - 1) + 1);
    }
    outputRead += bytes.size();
    return Part{bytes, unread() == 0};
}

void Client::clear()
{
    input.clear();
    dropAnswer();
}

void Client::dropAnswer()
{
    output.clear();
    output.shrink_to_fit(); // an answer can be megabytes
    outputRead = 0;
}

} // namespace simulator
