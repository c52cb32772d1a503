#pragma once

#include "simulator/BenchInstrument.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace simulator {

/// What one family of oscilloscopes has of its own.
struct OscilloscopeDialect
{
    std::string identity;
    double divisions;        ///< across the screen
    bool continuousCommands; ///< INITiate:CONTinuous and RUNContinuous
    Setting channelState;
    Setting horizontalPosition;
    Setting points;
    Setting triggerLevel;
    std::vector<std::pair<Setting, int>> triggerConditions; ///< the values with which it triggers
    std::vector<Setting> others;                            ///< without an effect on the record
};

/// The families "KVx" and "LPA4004".
OscilloscopeDialect kvxDialect();
OscilloscopeDialect lpa4004Dialect();

/// An oscilloscope with the source on channel 1, the sink on channel 2, the analyzers' output on
/// channel 3 and nothing on channel 4.
class Oscilloscope : public BenchInstrument
{
public:
    Oscilloscope(const OscilloscopeDialect &dialect, RadioLink &link);

protected:
    void reset() override;

private:
    /// Running acquires all the time, Armed waits for one trigger, Stopped keeps its record.
    enum class Acquisition
    {
        Running,
        Armed,
        Stopped,
    };

    void addRunControl(bool continuousCommands);
    Error trigger();
    [[nodiscard]] std::optional<double> level() const;
    [[nodiscard]] TimeGrid timeGrid() const;
    [[nodiscard]] std::vector<float> samples(std::size_t channel);
    Error answerRecord(const Call &call, std::string *answer);

    double divisions;
    Setting &channelState;
    Setting &scale;
    Setting &position;
    Setting &offset;
    Setting &timeScale;
    Setting &reference;
    Setting &horizontalPosition;
    Setting &points;
    Setting &triggerLevel;
    std::vector<std::pair<const Setting *, int>> triggerConditions;
    Acquisition acquisition = Acquisition::Running;
    RadioLinkEvent record{0, 0.0};
};

} // namespace simulator
