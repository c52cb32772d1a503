#pragma once

#include "simulator/LinkModel.h"
#include "simulator/Oscilloscope.h"
#include "simulator/SpectrumAnalyzer.h"
#include "simulator/VideoAnalyzer.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace simulator {

/// What the laboratory remembers, its clients' sessions apart.
struct BenchState
{
    bool isOn = false;
    LinkModel link;
    OscilloscopeState oscilloscope;
    OscilloscopeState oscilloscopeKvx;
    SpectrumAnalyzerState spectrumAnalyzer;
    SpectrumAnalyzerState spectrumAnalyzerQan;
    SpectrumAnalyzerState spectrumAnalyzerQel;
    VideoAnalyzerState videoAnalyzer;
};
static_assert(std::is_trivially_copyable_v<BenchState>, "processes share it as bytes");

/// The laboratory bench: the wireless link and the instruments that look at it.
class Bench
{
public:
    /// A bench that remembers in `state`.
    explicit Bench(BenchState &state);

    /// Switches everything on, unless it is on: settings of *RST, the sequence at its start.
    void switchOn();

    /// A number that differs between layouts of the state, as far as the settings make it.
    [[nodiscard]] std::uint32_t layout() const;

    /// The instrument with this host name in lower case, null when there is none.
    [[nodiscard]] Instrument *find(std::string_view host) const;
    /// The host names of all instruments.
    [[nodiscard]] std::vector<std::string> hosts() const;

    LinkModel &link() { return state_.link; }

private:
    BenchState &state_;
    Oscilloscope oscilloscope_;
    Oscilloscope oscilloscopeKvx_;
    SpectrumAnalyzer spectrumAnalyzer_;
    SpectrumAnalyzer spectrumAnalyzerQan_;
    SpectrumAnalyzer spectrumAnalyzerQel_;
    VideoAnalyzer videoAnalyzer_;
    std::map<std::string, Instrument *, std::less<>> instruments_;
};

} // namespace simulator
