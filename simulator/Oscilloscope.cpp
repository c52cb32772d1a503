#include "simulator/Oscilloscope.h"

#include "simulator/scpi/Number.h"

#include <algorithm>
#include <array>

namespace simulator {

namespace {

constexpr double verticalDivisions = 10.0;

} // namespace

Oscilloscope::Oscilloscope(const OscilloscopeDialect &dialect, RadioLink &link)
    : Instrument(dialect.identity),
      link(link),
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
    for (const Setting &setting : dialect.triggerConditions) {
        triggerConditions.push_back(&add(setting));
    }
    for (const Setting &setting : dialect.others) {
        add(setting);
    }
    // SCALe is one division, RANGe the whole screen.
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
    onAction("RUN", enter(Acquisition::Running));
    onAction("STOP", enter(Acquisition::Stopped));
    onAction("SINGle", enter(Acquisition::Armed));
    onCommand("*TRG", {}, [this](const Call &, std::string *) { return trigger(); });
    if (!continuousCommands) {
        return;
    }
    onAction("RUNContinuous", enter(Acquisition::Running));
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
    Instrument::reset();
    channelState.set({1, 1}, 1.0);
    channelState.set({3, 1}, 1.0);
    acquisition = Acquisition::Running;
}

Error Oscilloscope::trigger()
{
    if (acquisition == Acquisition::Stopped) {
        return scpi::triggerIgnored;
    }
    link.trigger(level());
    record = link.lastRecord();
    setDuration(timeGrid().span);
    if (acquisition == Acquisition::Armed) {
        acquisition = Acquisition::Stopped;
    }
    return scpi::noError;
}

std::optional<double> Oscilloscope::level() const
{
    for (const Setting *condition : triggerConditions) {
        if (condition->value() != condition->powerUpValue()) {
            return std::nullopt;
        }
    }
    return triggerLevel.value();
}

TimeGrid Oscilloscope::timeGrid() const
{
    const double span = timeScale.value() * divisions;
    return {horizontalPosition.value() - span * reference.value() / 100.0, span,
            static_cast<std::size_t>(points.value())};
}

std::vector<float> Oscilloscope::samples(std::size_t channel)
{
    const AnalyzerOutput &output = link.analyzerOutput();
    const std::array inputs{Signal::Source, Signal::Sink, output.signal, Signal::Unconnected};
    std::vector<float> samples = record.trace(inputs.at(channel - 1), timeGrid(), output.receiver);

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
    *answer = traceText(samples(channel));
    return scpi::noError;
}

} // namespace simulator
