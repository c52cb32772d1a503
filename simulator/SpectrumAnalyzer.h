#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

namespace simulator {

/// What distinguishes one family of spectrum analyzers from another.
struct AnalyzerDialect
{
    const char *identity;
    bool hasFrequencyMode;
    bool hasIfOutput;
};

constexpr AnalyzerDialect spaDialect{"Varnholt,SPA26,100201,1.00", false, true};
constexpr AnalyzerDialect qanDialect{"Varnholt,QAN40,100202,1.00", true, true};
constexpr AnalyzerDialect qelDialect{"Varnholt,QEL8,100203,1.00", false, false};

/// A spectrum analyzer in zero span. Its external trigger comes from the oscilloscopes. The cable
/// to the oscilloscopes' channel 3 carries the output of one analyzer: of those that have an IF
/// output, the one that executed the last message.
class SpectrumAnalyzer : public Instrument
{
public:
    SpectrumAnalyzer(const AnalyzerDialect &dialect, RadioLink &link);

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
