#include "simulator/Bench.h"

#include "simulator/Oscilloscope.h"
#include "simulator/SpectrumAnalyzer.h"
#include "simulator/VideoAnalyzer.h"

namespace simulator {

Bench::Bench()
{
    instruments["scope"] = std::make_unique<Oscilloscope>(lpa4004Dialect(), link);
    instruments["scope-kvx"] = std::make_unique<Oscilloscope>(kvxDialect(), link);
    for (const auto &[host, family] : {std::pair{"analyzer", AnalyzerFamily::Plain},
                                       {"analyzer-qan", AnalyzerFamily::Qan},
                                       {"analyzer-qel", AnalyzerFamily::Qel}}) {
        instruments[host] = std::make_unique<SpectrumAnalyzer>(family, link);
    }
    instruments["video"] = std::make_unique<VideoAnalyzer>(link);
}

Instrument *Bench::find(std::string_view host) const
{
    for (const auto &[name, instrument] : instruments) {
        if (upperCase(name) == upperCase(host)) {
            return instrument.get();
        }
    }
    return nullptr;
}

std::vector<std::string> Bench::hosts() const
{
    std::vector<std::string> hosts;
    for (const auto &[host, instrument] : instruments) {
        hosts.push_back(host);
    }
    return hosts;
}

} // namespace simulator
