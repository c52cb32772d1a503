#pragma once

#include "simulator/Instrument.h"
#include "simulator/LinkModel.h"

#include <cstdint>

namespace simulator {

/// A video analyzer that measures the delay from the source to the sink's HDMI output.
class VideoAnalyzer : public Instrument
{
public:
    explicit VideoAnalyzer(LinkModel &link);

    [[nodiscard]] bool isMeasuring() const { return measuring_; }

protected:
    void reset() override;

private:
    int answerDelay(const Call &call, std::string &answer);

    LinkModel &link_;
    bool measuring_ = false;
    std::uint32_t eventsBefore_ = 0; // the measurement was started
};

} // namespace simulator
