#include "simulator/scpi/TraceFormat.h"

#include "simulator/scpi/Number.h"
#include "simulator/scpi/Pattern.h"

#include <cstdint>
#include <cstring>

namespace simulator {

namespace {

std::string definiteLengthBlock(const std::vector<float> &samples)
{
    const std::string length = std::to_string(samples.size() * sizeof(float));
    std::string block = '#' + std::to_string(length.size()) + length;
    std::size_t at = block.size();
    block.resize(at + samples.size() * sizeof(float));
    for (const float sample : samples) {
        std::uint32_t bits = 0;
        std::memcpy(&bits, &sample, sizeof bits);
        block[at++] = static_cast<char>(bits & 0xffU);
        block[at++] = static_cast<char>(bits >> 8U & 0xffU);
        block[at++] = static_cast<char>(bits >> 16U & 0xffU);
        block[at++] = static_cast<char>(bits >> 24U);
    }
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

} // namespace

Error TraceFormat::set(const std::vector<std::string_view> &parameters)
{
    const bool real = isMnemonic("REAL", parameters[0]);
    if (!real && !isMnemonic("ASCii", parameters[0])) {
        return scpi::illegalParameterValue;
    }
    if (parameters.size() == 2 && parameters[1] != (real ? "32" : "0")) {
        return scpi::illegalParameterValue;
    }
    isReal = real;
    return scpi::noError;
}

std::string TraceFormat::encode(const std::vector<float> &samples) const
{
    return isReal ? definiteLengthBlock(samples) : decimalText(samples);
}

} // namespace simulator
