#include "simulator/Oscilloscope.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

constexpr double verticalDivisions = 10.0;

constexpr std::array<Signal, 4> wiring{Signal::Source, Signal::Sink, Signal::Video,
                                       Signal::Unconnected};

/// x and y of each sample in turn.
std::vector<float> withTimes(const std::vector<float> &samples, const TimeGrid &grid)
{
    const double step = grid.span / static_cast<double>(grid.points - 1);
    std::vector<float> pairs;
    pairs.reserve(2 * samples.size());
    for (const float sample : samples) {
        const std::size_t k = pairs.size() / 2;
        pairs.push_back(static_cast<float>(grid.start + step * static_cast<double>(k)));
        pairs.push_back(sample);
    }
    return pairs;
}

} // namespace

Oscilloscope::Oscilloscope(const OscilloscopeDialect &dialect, OscilloscopeState &state,
                           LinkModel &link)
    : Instrument(dialect.identity, dialect.settings, state),
      dialect_(dialect),
      state_(state),
      link_(link)
{
    addFormatCommands(state_.format);
    onQuery("CHANnel<4>:DATA",
            [this](const Call &call, std::string &answer) { return answerRecord(call, answer); });
    addRunControl();
}

void Oscilloscope::addRunControl()
{
    const auto enter = [this](Acquisition acquisition) {
        return [this, acquisition] { state_.acquisition = acquisition; };
    };
    onEvent("*TRG", [this] { forceTrigger(); });
    onEvent("RUN", enter(Acquisition::Running));
    onEvent("STOP", enter(Acquisition::Stopped));
    onEvent("SINGle", enter(Acquisition::Armed));
    if (dialect_.continuousCommands) {
        onEvent("RUNContinuous", enter(Acquisition::Running));
        onSwitch(
            "INITiate:CONTinuous",
            [this](bool on) {
                state_.acquisition = on ? Acquisition::Running : Acquisition::Armed;
            },
            [this] { return state_.acquisition == Acquisition::Running; });
    }
}

void Oscilloscope::reset()
{
    Instrument::reset();
    setValue(dialect_.channelState, 1, 1.0);
    setValue(dialect_.channelState, 3, 1.0);
    state_.format.reset();
    state_.acquisition = Acquisition::Running;
}

void Oscilloscope::forceTrigger()
{
    link_.trigger(triggerLevel());
    if (state_.acquisition == Acquisition::Armed) {
        state_.acquisition = Acquisition::Stopped;
    }
}

std::optional<double> Oscilloscope::triggerLevel() const
{
    for (const auto &[pattern, needed] : dialect_.triggerConditions) {
        if (value(pattern) != needed) {
            return std::nullopt;
        }
    }
    return value(dialect_.triggerLevel);
}

TimeGrid Oscilloscope::timeGrid() const
{
    const double span = value("TIMebase:SCALe") * dialect_.divisions;
    const double beforeReference = span * value("TIMebase:REFerence") / 100.0;
    return {value(dialect_.horizontalPosition) - beforeReference, span,
            static_cast<std::size_t>(value("ACQuire:POINts"))};
}

void Oscilloscope::clip(std::vector<float> &samples, std::size_t channel) const
{
    const double scale = value("CHANnel<4>:SCALe", channel);
    const double centre =
        value("CHANnel<4>:OFFSet", channel) - scale * value("CHANnel<4>:POSition", channel);
    const auto bottom = static_cast<float>(centre - scale * verticalDivisions / 2.0);
    const auto top = static_cast<float>(centre + scale * verticalDivisions / 2.0);
    for (float &sample : samples) {
        sample = std::clamp(sample, bottom, top);
    }
}

int Oscilloscope::answerRecord(const Call &call, std::string &answer)
{
    const std::size_t channel = call.suffixes[0];
    if (!call.parameters.empty()) {
        return scpi::parameterNotAllowed;
    }
    if (value(dialect_.channelState, channel) == 0.0) {
        return scpi::settingsConflict;
    }
    const TimeGrid grid = timeGrid();
    std::vector<float> samples = link_.lastEvent().trace(wiring.at(channel - 1), grid);
    clip(samples, channel);
    if (!dialect_.interleave.empty() && value(dialect_.interleave) != 0.0) {
        samples = withTimes(samples, grid);
    }
    answer = state_.format.encode(samples);
    return scpi::noError;
}

} // namespace simulator
