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

/// A spectrum analyzer in zero span on the link's channel, triggered by the oscilloscope.
class SpectrumAnalyzer : public Instrument
{
public:
    SpectrumAnalyzer(AnalyzerFamily family, LinkModel &link);

    [[nodiscard]] bool isContinuous() const { return continuous_; }

protected:
    void reset() override;

private:
    int answerTrace(const Call &call, std::string &answer);

    LinkModel &link_;
    TraceFormat format_;
    bool continuous_ = true;
};

} // namespace simulator
