#pragma once

#include "simulator/Instrument.h"
#include "simulator/LinkModel.h"

#include <cstdint>

namespace simulator {

struct VideoAnalyzerState : InstrumentState
{
    bool measuring = false;
    std::uint32_t eventsBefore = 0; // the measurement was started
};

/// A video analyzer that measures the delay from the source to the sink's HDMI output.
class VideoAnalyzer : public Instrument
{
public:
    VideoAnalyzer(VideoAnalyzerState &state, LinkModel &link);

protected:
    void reset() override;

private:
    int answerDelay(const Call &call, std::string &answer);

    VideoAnalyzerState &state_;
    LinkModel &link_;
};

} // namespace simulator
