#include "simulator/Bench.h"

namespace simulator {

Bench::Bench(BenchState &state)
    : state_(state),
      oscilloscope_(lpa4004Dialect(), state.oscilloscope, state.link),
      oscilloscopeKvx_(kvxDialect(), state.oscilloscopeKvx, state.link),
      spectrumAnalyzer_(AnalyzerFamily::Plain, state.spectrumAnalyzer, state.link),
      spectrumAnalyzerQan_(AnalyzerFamily::Qan, state.spectrumAnalyzerQan, state.link),
      spectrumAnalyzerQel_(AnalyzerFamily::Qel, state.spectrumAnalyzerQel, state.link),
      videoAnalyzer_(state.videoAnalyzer, state.link),
      instruments_{{"scope", &oscilloscope_},
                   {"scope-kvx", &oscilloscopeKvx_},
                   {"analyzer", &spectrumAnalyzer_},
                   {"analyzer-qan", &spectrumAnalyzerQan_},
                   {"analyzer-qel", &spectrumAnalyzerQel_},
                   {"video", &videoAnalyzer_}}
{
}

void Bench::switchOn()
{
    if (state_.isOn) {
        return;
    }
    state_.link = LinkModel();
    for (const auto &[host, instrument] : instruments_) {
        instrument->switchOn();
    }
    state_.isOn = true;
}

std::uint32_t Bench::layout() const
{
    std::string description = std::to_string(sizeof state_);
    for (const auto &[host, instrument] : instruments_) {
        description += host + instrument->layout();
    }
    std::uint32_t hash = 2166136261U; // FNV-1a
    for (const char c : description) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 16777619U;
    }
    return hash;
}

Instrument *Bench::find(std::string_view host) const
{
    const auto found = instruments_.find(host);
    return found == instruments_.end() ? nullptr : found->second;
}

std::vector<std::string> Bench::hosts() const
{
    std::vector<std::string> hosts;
    for (const auto &[host, instrument] : instruments_) {
        hosts.push_back(host);
    }
    return hosts;
}

} // namespace simulator
