#include "simulator/MessageExchange.h"

#include <algorithm>
#include <utility>

namespace simulator {

namespace {

constexpr std::size_t inputBufferSize = 65536;

} // namespace

MessageExchange::~MessageExchange()
{
    unlock();
    --device.clients;
}

void MessageExchange::write(std::string_view bytes, bool end)
{
    while (!bytes.empty()) {
        const std::size_t newline = bytes.find('\n');
        const std::string_view line = bytes.substr(0, newline);
        bytes.remove_prefix(std::min(line.size() + 1, bytes.size()));
        // Keep one byte over the limit, which shows the overrun.
        input += line.substr(0, inputBufferSize + 1 - input.size());
        if (newline != std::string_view::npos || end) {
            receive(std::exchange(input, {}));
        }
    }
}

void MessageExchange::receive(std::string_view message)
{
    if (trimmed(message).empty()) {
        return;
    }
    if (hasAnswer()) {
        device.instrument->report(scpi::queryInterrupted); // IEEE 488.2 6.3.2.3
    }
    dropAnswer();
    if (message.size() > inputBufferSize) {
        device.instrument->report(scpi::inputBufferOverrun);
        return;
    }
    output = device.instrument->execute(message);
    device.applyTimeAndFaults(&output);
}

Clock::time_point MessageExchange::answerAt() const
{
    return hasAnswer() ? device.readyAt : never;
}

std::optional<MessageExchange::Part> MessageExchange::read(std::size_t count,
                                                           std::optional<char> termination)
{
    if (!hasAnswer()) {
        device.instrument->report(scpi::queryUnterminated); // IEEE 488.2 6.3.2.2
        return std::nullopt;
    }
    if (Clock::now() < device.readyAt) {
        return std::nullopt;
    }
    std::string_view bytes = std::string_view(output).substr(outputRead, count);
    if (termination) {
        bytes = bytes.substr(0, std::min(bytes.find(*termination), bytes.size() - 1) + 1);
    }
    outputRead += bytes.size();
    return Part{bytes, !bytes.empty() && bytes.back() == termination, !hasAnswer()};
}

void MessageExchange::clear()
{
    input.clear();
    dropAnswer();
    device.readyAt = {};
}

void MessageExchange::trigger()
{
    std::string answer = device.instrument->execute("*TRG");
    device.applyTimeAndFaults(&answer);
}

std::uint8_t MessageExchange::statusByte() const
{
    return device.instrument->statusByte(Clock::now() >= answerAt());
}

bool MessageExchange::unlock()
{
    if (device.lockHolder != this) {
        return false;
    }
    device.lockHolder = nullptr;
    return true;
}

void MessageExchange::dropAnswer()
{
    output.clear();
    output.shrink_to_fit(); // an answer can be megabytes
    outputRead = 0;
}

} // namespace simulator
