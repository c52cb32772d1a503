#pragma once

#include "simulator/Instrument.h"
#include "simulator/LinkModel.h"
#include "simulator/TraceFormat.h"

namespace simulator {

/// The families of spectrum analyzers: a plain one, one with a frequency mode (QAN), one without
/// an IF output (QEL).
enum class AnalyzerFamily
{
    Plain,
    Qan,
    Qel
};

struct SpectrumAnalyzerState : InstrumentState
{
    TraceFormat format;
    bool continuous = true;
};

/// A spectrum analyzer in zero span on the link's channel, triggered by the oscilloscope.
class SpectrumAnalyzer : public Instrument
{
public:
    SpectrumAnalyzer(AnalyzerFamily family, SpectrumAnalyzerState &state, LinkModel &link);

protected:
    void reset() override;

private:
    int answerTrace(const Call &call, std::string &answer);

    SpectrumAnalyzerState &state_;
    LinkModel &link_;
};

} // namespace simulator
