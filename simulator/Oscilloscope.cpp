#include "simulator/Oscilloscope.h"

#include "simulator/scpi/Number.h"

#include <algorithm>

namespace simulator {

namespace {

constexpr double verticalDivisions = 10.0;

} // namespace

// Both families: RANGe is the whole screen of ten vertical divisions, SCALe one of them; the time
// base likewise with the family's number of horizontal divisions.
Oscilloscope::Oscilloscope(const OscilloscopeDialect &dialect, RadioLink &link)
    : BenchInstrument(dialect.identity, link),
      divisions(dialect.divisions),
      channelState(add(dialect.channelState)),
      scale(add(number("CHANnel<4>:SCALe", 1e-3, 10.0, 0.2, "V"))),
      position(add(number("CHANnel<4>:POSition", -5.0, 5.0, 0.0))),
      offset(add(number("CHANnel<4>:OFFSet", -10.0, 10.0, 0.0, "V"))),
      timeScale(add(number("TIMebase:SCALe", 1e-6, 50.0, 0.1, "S"))),
      reference(add(number("TIMebase:REFerence", 0.0, 100.0, 50.0, "PCT"))),
      horizontalPosition(add(dialect.horizontalPosition)),
      points(add(dialect.points)),
      triggerLevel(add(dialect.triggerLevel))
{
    for (const auto &[setting, needed] : dialect.triggerConditions) {
        triggerConditions.emplace_back(&add(setting), needed);
    }
    for (const Setting &setting : dialect.others) {
        add(setting);
    }
    addMultiple("CHANnel<4>:RANGe", scale, verticalDivisions);
    addMultiple("TIMebase:RANGe", timeScale, divisions);
    addFormatCommands();
    onQuery("CHANnel<4>:DATA", {},
            [this](const Call &call, std::string *answer) { return answerRecord(call, answer); });
    addRunControl(dialect.continuousCommands);
    Oscilloscope::reset();
}

void Oscilloscope::addRunControl(bool continuousCommands)
{
    const auto enter = [this](Acquisition next) { return [this, next] { acquisition = next; }; };
    onEvent("RUN", enter(Acquisition::Running));
    onEvent("STOP", enter(Acquisition::Stopped));
    onEvent("SINGle", enter(Acquisition::Armed));
    onCommand("*TRG", {}, [this](const Call &, std::string *) { return trigger(); });
    if (!continuousCommands) {
        return;
    }
    onEvent("RUNContinuous", enter(Acquisition::Running));
    onCommand("INITiate:CONTinuous", {1, 1}, [this](const Call &call, std::string *) {
        bool isOn = false;
        const Error error = parseBoolean(call.parameters[0], &isOn);
        if (!error) {
            acquisition = isOn ? Acquisition::Running : Acquisition::Armed;
        }
        return error;
    });
    onAnswer("INITiate:CONTinuous",
             [this] { return std::string(acquisition == Acquisition::Running ? "1" : "0"); });
}

void Oscilloscope::reset()
{
    BenchInstrument::reset();
    channelState.set({1, 1}, 1.0);
    channelState.set({3, 1}, 1.0);
    acquisition = Acquisition::Running;
}

Error Oscilloscope::trigger()
{
    if (acquisition == Acquisition::Stopped) {
        return scpi::triggerIgnored;
    }
    radioLink().trigger(level());
    record = radioLink().lastRecord();
    begin(timeGrid().span);
    if (acquisition == Acquisition::Armed) {
        acquisition = Acquisition::Stopped;
    }
    return scpi::noError;
}

std::optional<double> Oscilloscope::level() const
{
    const bool triggers =
        std::all_of(triggerConditions.begin(), triggerConditions.end(),
                    [](const auto &condition) { return condition.first->is(condition.second); });
    return triggers ? std::optional(triggerLevel.value()) : std::nullopt;
}

TimeGrid Oscilloscope::timeGrid() const
{
    const double span = timeScale.value() * divisions;
    return {horizontalPosition.value() - span * reference.value() / 100.0, span,
            static_cast<std::size_t>(points.value())};
}

std::vector<float> Oscilloscope::samples(std::size_t channel)
{
    const AnalyzerOutput &output = radioLink().analyzerOutput();
    const Signal signal = channel == 1   ? Signal::Source
                          : channel == 2 ? Signal::Sink
                          : channel == 3 ? output.signal
                                         : Signal::Unconnected;
    std::vector<float> samples = record.trace(signal, timeGrid(), output.receiver);

    const double division = scale.value(channel);
    const double centre = offset.value(channel) - division * position.value(channel);
    const auto bottom = static_cast<float>(centre - division * verticalDivisions / 2.0);
    const auto top = static_cast<float>(centre + division * verticalDivisions / 2.0);
    for (float &sample : samples) {
        sample = std::clamp(sample, bottom, top);
    }
    return samples;
}

Error Oscilloscope::answerRecord(const Call &call, std::string *answer)
{
    const std::size_t channel = call.suffixes[0];
    if (!channelState.isOn(channel)) {
        return scpi::settingsConflict;
    }
    *answer = traceFormat().encode(samples(channel));
    return scpi::noError;
}

} // namespace simulator
