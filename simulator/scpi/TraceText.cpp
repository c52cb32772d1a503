#include "simulator/scpi/TraceText.h"

#include "simulator/scpi/Number.h"

#include <cstring>

namespace simulator {

std::string definiteLengthBlock(const std::vector<float> &samples)
{
    const std::string length = std::to_string(samples.size() * sizeof(float));
    std::string block = '#' + std::to_string(length.size()) + length;
    const std::size_t headerSize = block.size();
    block.resize(headerSize + samples.size() * sizeof(float));
    // As the program itself, the bench runs on little-endian machines only.
    std::memcpy(block.data() + headerSize, samples.data(), block.size() - headerSize);
    return block;
}

std::string decimalText(const std::vector<float> &samples)
{
    std::string text;
    for (const float sample : samples) {
        if (!text.empty()) {
            text += ',';
        }
        appendNumber(&text, sample);
    }
    return text;
}

} // namespace simulator
