#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

namespace simulator {

/// The families of spectrum analyzers.
enum class AnalyzerFamily
{
    Plain,
    Qan, ///< has a frequency mode
    Qel, ///< has no IF output
};

/// A spectrum analyzer in zero span. Its external trigger comes from the oscilloscopes. All
/// analyzers share the cable to the oscilloscopes' channel 3; it carries the output of the analyzer
/// that received the last message.
class SpectrumAnalyzer : public Instrument
{
public:
    SpectrumAnalyzer(AnalyzerFamily family, RadioLink &link);

protected:
    void messageExecuted() override;

private:
    void startSweep();
    [[nodiscard]] Receiver receiver() const;
    Error answerTrace(const Call &call, std::string *answer);

    RadioLink &link;
    Setting &frequency;
    Setting &triggerSource;
    Setting &holdOff;
    Setting &sweepTime;
    Setting &points;
    Setting &bandwidth;
    Setting &continuous;
    Setting *output = nullptr;          // null where there is no IF output
    Setting *outputFrequency = nullptr; // likewise
    RadioLinkEvent sweep{0, 0.0};       // the last one without an external trigger
};

} // namespace simulator
