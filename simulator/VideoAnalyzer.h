#pragma once

#include "simulator/BenchInstrument.h"

#include <cstdint>
#include <optional>

namespace simulator {

/// A video analyzer that measures the delay from the source to the sink's HDMI output.
class VideoAnalyzer : public BenchInstrument
{
public:
    explicit VideoAnalyzer(RadioLink &link);

protected:
    void reset() override;

private:
    [[nodiscard]] std::uint32_t count(); // of the events since the measurement started
    Error answerDelay(std::string *answer);

    std::optional<std::uint32_t> eventsBefore; // when the measurement started, if it did
};

} // namespace simulator
