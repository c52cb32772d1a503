#pragma once

#include "simulator/RadioLink.h"
#include "simulator/scpi/Instrument.h"

#include <optional>
#include <string>
#include <vector>

namespace simulator {

/// What distinguishes one family of oscilloscopes from another.
struct OscilloscopeDialect
{
    std::string identity;
    double divisions;        ///< horizontal divisions of the screen
    bool continuousCommands; ///< whether it has INITiate:CONTinuous and RUNContinuous
    Setting channelState;
    Setting horizontalPosition;
    Setting points;
    Setting triggerLevel;
    std::vector<Setting> triggerConditions; ///< it triggers only with their values at power-up
    std::vector<Setting> others;            ///< no effect on the record
};

/// Return the dialects of the families "KVx" and "LPA4004".
OscilloscopeDialect kvxDialect();
OscilloscopeDialect lpa4004Dialect();

/// An oscilloscope. Channel 1 is wired to the source, channel 2 to the sink and channel 3 to the
/// analyzers' output; channel 4 is open.
class Oscilloscope : public Instrument
{
public:
    Oscilloscope(const OscilloscopeDialect &dialect, RadioLink &link);

protected:
    void reset() override;

private:
    enum class Acquisition
    {
        Running, ///< every trigger makes a new record
        Armed,   ///< the next trigger makes a new record and stops the acquisition
        Stopped, ///< the record stays
    };

    void addRunControl(bool continuousCommands);
    Error trigger();
    /// Returns the trigger level in volts; nothing when the settings allow no trigger.
    [[nodiscard]] std::optional<double> level() const;
    [[nodiscard]] TimeGrid timeGrid() const;
    [[nodiscard]] std::vector<float> samples(std::size_t channel);
    Error answerRecord(const Call &call, std::string *answer);

    RadioLink &link;
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
    std::vector<const Setting *> triggerConditions;
    Acquisition acquisition = Acquisition::Running;
    RadioLinkEvent record{0, 0.0};
};

} // namespace simulator
