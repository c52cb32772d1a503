#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

#include <cstdint>
#include <optional>

namespace simulator {

/// A video analyzer that measures the delay from the source to the sink's HDMI output.
class VideoAnalyzer : public Instrument
{
public:
    explicit VideoAnalyzer(RadioLink &link);

protected:
    void reset() override;

private:
    [[nodiscard]] std::uint32_t count(); // of the events since the measurement started
    Error answerDelay(std::string *answer);

    RadioLink &link;
    std::optional<std::uint32_t> eventsBefore; // the measurement; nothing while there is none
};

} // namespace simulator
