#pragma once

#include "simulator/scpi/ErrorQueue.h"
#include "simulator/scpi/Pattern.h"
#include "simulator/scpi/Setting.h"
#include "simulator/scpi/TraceFormat.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simulator {

/// An instrument that understands SCPI: its settings, its common commands, its status and its error
/// queue. The kinds of instrument add their own commands. One thread at a time.
class Instrument
{
public:
    explicit Instrument(std::string identity);
    virtual ~Instrument() = default;
    Instrument(const Instrument &) = delete; // the commands refer to their instrument
    Instrument &operator=(const Instrument &) = delete;

    /// Execute one program message (without its terminator) and return the response message with
    /// its terminator, empty when nothing was asked or answered. Errors go to the queue; a unit
    /// that fails answers nothing, the units after it are executed.
    std::string execute(std::string_view message);

    /// Leave an error in the queue, and in the event status register.
    void report(const Error &error);
    ErrorQueue &errors() { return queue; }

    /// Compute the status byte (IEEE 488.2 11.2), with SCPI's 4 for the error queue, for a client
    /// that has an answer to read or none.
    [[nodiscard]] std::uint8_t statusByte(bool messageAvailable) const;

    struct Call
    {
        Suffixes suffixes;
        std::vector<std::string_view> parameters;
    };
    /// Carry a command out. What a failing one has added to the answer is dropped.
    using Handler = std::function<Error(const Call &call, std::string *answer)>;
    /// How many parameters there may be.
    struct Parameters
    {
        std::size_t least = 0;
        std::size_t most = 0;
    };

    /// Add a command by its pattern.
    void onCommand(std::string_view pattern, Parameters parameters, Handler handler);

    /// Take the time in seconds that what was started since the last call lasts, for whoever makes
    /// clients wait for it: here everything is over at once.
    double takeDuration() { return std::exchange(duration, 0.0); }

protected:
    /// Add a setting with its command and its query.
    Setting &add(Setting setting);
    /// Add a command and a query that tell a setting in other words, factor times its value.
    void addMultiple(std::string_view pattern, Setting &setting, double factor);
    /// Add a query by its pattern, without the question mark.
    void onQuery(std::string_view pattern, Parameters parameters, Handler handler);
    /// Add a command that takes no parameters and cannot fail.
    void onEvent(std::string_view pattern, const std::function<void()> &action);
    /// Add a query that takes no parameters and cannot fail.
    void onAnswer(std::string_view pattern, const std::function<std::string()> &text);
    /// Add FORMat[:DATA] for an instrument that answers traces.
    void addFormatCommands();

    [[nodiscard]] const TraceFormat &traceFormat() const { return format; }
    /// Say how long in seconds what has just started lasts.
    void begin(double seconds) { duration = seconds; }
    /// Give every setting its value at power-up; *RST does it.
    virtual void reset();
    /// Do what follows from the messages: called after each.
    virtual void executed() {}

private:
    struct Command
    {
        Pattern pattern;
        bool isQuery;
        Parameters parameters;
        Handler handler;
    };

    void addCommonCommands();
    std::string executeUnits(std::string_view message);
    const Command *find(std::string_view header, Suffixes *suffixes, Error *error) const;
    Error executeUnit(std::string_view unit, std::string *path, std::string *answer);

    std::string identity;
    std::deque<Setting> settings; // which never move
    std::vector<Command> commands;
    TraceFormat format;
    ErrorQueue queue;
    unsigned eventStatus = 0x80; // IEEE 488.2 11.5.1: it has been switched on
    Setting *eventEnable = nullptr;
    Setting *serviceEnable = nullptr;
    bool hasAnswered = false; // the message that is being executed
    double duration = 0.0;
};

} // namespace simulator
