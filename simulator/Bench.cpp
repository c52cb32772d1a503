#include "simulator/Bench.h"

#include "simulator/Oscilloscope.h"
#include "simulator/SpectrumAnalyzer.h"
#include "simulator/VideoAnalyzer.h"

namespace simulator {

Bench::Bench()
{
    instruments_["oscilloscope"] = std::make_unique<Oscilloscope>(lpa4004Dialect(), link_);
    instruments_["oscilloscope-kvx"] = std::make_unique<Oscilloscope>(kvxDialect(), link_);
    instruments_["spectrum-analyzer"] =
        std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Plain, link_);
    instruments_["spectrum-analyzer-qan"] =
        std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Qan, link_);
    instruments_["spectrum-analyzer-qel"] =
        std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Qel, link_);
    instruments_["video-analyzer"] = std::make_unique<VideoAnalyzer>(link_);
}

Instrument *Bench::find(std::string_view host) const
{
    const auto found = instruments_.find(host);
    return found == instruments_.end() ? nullptr : found->second.get();
}

Bench &bench()
{
    static Bench instance;
    return instance;
}

} // namespace simulator
