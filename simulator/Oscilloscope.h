#pragma once

#include "simulator/Instrument.h"
#include "simulator/LinkModel.h"
#include "simulator/TraceFormat.h"

#include <optional>
#include <utility>
#include <vector>

namespace simulator {

/// What one family of oscilloscopes has of its own; the names are patterns of its settings.
struct OscilloscopeDialect
{
    const char *identity;
    std::vector<Setting> settings;
    std::string_view channelState;
    std::string_view triggerLevel;
    std::string_view horizontalPosition;
    std::string_view interleave; // answer times with the samples; empty where there is no such
    std::vector<std::pair<std::string_view, double>> triggerConditions; // settings, their values
    bool continuousCommands; // INITiate:CONTinuous and RUNContinuous
    double divisions;        // across the screen
};

/// The families "KVx" and "LPA4004".
const OscilloscopeDialect &kvxDialect();
const OscilloscopeDialect &lpa4004Dialect();

/// Running acquires all the time, Armed waits for one trigger, Stopped keeps its record.
enum class Acquisition
{
    Running,
    Armed,
    Stopped
};

struct OscilloscopeState : InstrumentState
{
    TraceFormat format;
    Acquisition acquisition = Acquisition::Running;
};

/// An oscilloscope with the source on channel 1, the sink on channel 2, the analyzer's video output
/// on channel 3 and nothing on channel 4.
class Oscilloscope : public Instrument
{
public:
    Oscilloscope(const OscilloscopeDialect &dialect, OscilloscopeState &state, LinkModel &link);

protected:
    void reset() override;

private:
    void addRunControl();
    void forceTrigger();
    [[nodiscard]] std::optional<double> triggerLevel() const;
    [[nodiscard]] TimeGrid timeGrid() const;
    void clip(std::vector<float> &samples, std::size_t channel) const;
    int answerRecord(const Call &call, std::string &answer);

    const OscilloscopeDialect &dialect_;
    OscilloscopeState &state_;
    LinkModel &link_;
};

} // namespace simulator
