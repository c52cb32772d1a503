#pragma once

#include "simulator/ErrorQueue.h"
#include "simulator/ScpiPattern.h"
#include "simulator/Setting.h"
#include "simulator/TraceFormat.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace simulator {

/// What every instrument remembers; the kinds of instrument add to it. No pointers: the processes
/// that use an instrument share this.
struct InstrumentState
{
    std::array<double, 128> values{}; // of its settings
    ErrorQueue errors;
    bool remote = false;
};

/// An instrument that understands SCPI: its settings, its common commands and its error queue. The
/// kinds of instrument add their own commands.
class Instrument
{
public:
    /// What the instrument remembers is in `state`; it is not switched on.
    Instrument(std::string identity, const std::vector<Setting> &settings, InstrumentState &state);
    virtual ~Instrument() = default;
    Instrument(const Instrument &) = delete; // the commands refer to their instrument
    Instrument &operator=(const Instrument &) = delete;

    /// Starts with the settings of *RST, in local mode and without errors.
    void switchOn();

    /// The settings in the order of their values.
    [[nodiscard]] std::string layout() const;

    /// Executes one program message (without its terminator) and returns the response message with
    /// its terminator, empty when nothing was asked or answered. Errors go to the queue; a unit
    /// that fails answers nothing, the units after it are executed.
    std::string execute(std::string_view message);

    ErrorQueue &errors() { return state_.errors; }

    [[nodiscard]] bool isRemote() const { return state_.remote; }
    void setRemote(bool remote) { state_.remote = remote; }

    /// The present value of a setting, by the pattern that its table row has.
    [[nodiscard]] double value(std::string_view pattern, std::size_t suffix = 1) const;

protected:
    struct Call
    {
        Suffixes suffixes;
        std::vector<std::string_view> parameters;
    };
    /// Returns 0 or an error number, in which case what it added to `answer` is dropped.
    using Handler = std::function<int(const Call &call, std::string &answer)>;

    /// Commands and queries by their patterns, without the question mark.
    void onCommand(std::string_view pattern, Handler handler);
    void onQuery(std::string_view pattern, Handler handler);
    /// A command that takes no parameters and cannot fail.
    void onEvent(std::string_view pattern, const std::function<void()> &action);

    /// A query that takes no parameters and cannot fail.
    void onAnswer(std::string_view pattern, const std::function<std::string()> &text);
    /// A switch (ON, OFF or a number) that is no plain setting, and its query.
    void onSwitch(std::string_view pattern, const std::function<void(bool)> &turn,
                  const std::function<bool()> &isOn);
    /// FORMat[:DATA] for the instruments that answer traces.
    void addFormatCommands(TraceFormat &format);

    void setValue(std::string_view pattern, std::size_t suffix, double value);
    /// Gives every setting its power-up value; *RST does it.
    virtual void reset();

private:
    struct Row
    {
        Setting setting;
        Suffixes largest;
        std::size_t firstValue; // of its values, one for each suffix
    };
    struct Command
    {
        ScpiPattern pattern;
        Handler set;
        Handler query;
    };

    void addSetting(const Setting &setting);
    [[nodiscard]] const Row &row(std::string_view pattern) const;
    [[nodiscard]] double &valueOf(const Row &row, const Suffixes &suffixes) const;
    int change(const Row &row, const Call &call);
    int show(const Row &row, const Call &call, std::string &answer) const;
    int executeUnit(std::string_view unit, std::string &path, std::string &answer);
    const Command *find(std::string_view header, Suffixes &suffixes, int &error) const;

    std::string identity_;
    InstrumentState &state_;
    std::vector<Row> rows_;
    std::size_t valueCount_ = 0;
    std::vector<Command> commands_;
};

} // namespace simulator
