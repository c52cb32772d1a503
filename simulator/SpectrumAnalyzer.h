#pragma once

#include "simulator/BenchInstrument.h"

namespace simulator {

/// The families of spectrum analyzers: a plain one, one with a frequency mode (QAN), one without
/// an IF output (QEL).
enum class AnalyzerFamily
{
    Plain,
    Qan,
    Qel,
};

/// A spectrum analyzer in zero span, triggered by the oscilloscope that triggered last. The output
/// of the one that was spoken to last goes to the oscilloscopes' channel 3.
class SpectrumAnalyzer : public BenchInstrument
{
public:
    SpectrumAnalyzer(AnalyzerFamily family, RadioLink &link);

protected:
    void executed() override;

private:
    void startSweep();
    [[nodiscard]] Receiver receiver() const;
    Error answerTrace(const Call &call, std::string *answer);

    Setting &frequency;
    Setting &triggerSource;
    Setting &holdOff;
    Setting &sweepTime;
    Setting &points;
    Setting &bandwidth;
    Setting &continuous;
    Setting *output = nullptr; // null where there is none
    Setting *outputFrequency = nullptr;
    RadioLinkEvent sweep{0, 0.0}; // the last one that nothing triggered
};

} // namespace simulator
