#pragma once

#include "simulator/scpi/Error.h"
#include "simulator/scpi/Pattern.h"
#include "simulator/scpi/Setting.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simulator {

/// An instrument that understands SCPI. It has settings, the common commands, status registers and
/// an error queue; each kind of instrument adds its own commands. Only one thread may use it at a
/// time.
class Instrument
{
public:
    explicit Instrument(std::string identity);
    virtual ~Instrument() = default;
    Instrument(const Instrument &) = delete; // its commands point to it
    Instrument &operator=(const Instrument &) = delete;

    /// Execute one program message (without its terminator) and return the response message with
    /// its terminator. The response is empty when no query was answered. A unit that fails answers
    /// nothing and leaves an error in the queue; the units after it are executed.
    std::string execute(std::string_view message);

    /// Put an error into the queue and into the event status register.
    void report(const Error &error);

    /// Returns the status byte (IEEE 488.2 11.2). Bit 2 says that the error queue is not empty, bit
    /// 4 that the client has an answer to read.
    [[nodiscard]] std::uint8_t statusByte(bool messageAvailable) const;

    /// A command or query as a client sent it.
    struct Call
    {
        Suffixes suffixes;
        std::vector<std::string_view> parameters;
    };
    /// Execute a command or query. If it fails, its answer is dropped.
    using Handler = std::function<Error(const Call &call, std::string *answer)>;
    /// How many parameters a command takes.
    struct ParameterCount
    {
        std::size_t minimum = 0;
        std::size_t maximum = 0;
    };

    /// Add a command by its pattern.
    void onCommand(std::string_view pattern, ParameterCount count, Handler handler);
    /// Add a query by its pattern, without the question mark.
    void onQuery(std::string_view pattern, ParameterCount count, Handler handler);

    /// Returns the duration in seconds of the record or sweep that was started since the last call;
    /// 0 when there was none. The instrument completes it at once, and the device lets clients
    /// wait.
    double takeDuration() { return std::exchange(duration, 0.0); }

protected:
    /// Add a setting with its command and its query.
    Setting &add(Setting setting);
    /// Add a command and a query whose parameter and answer are factor times a setting's value.
    void addMultiple(std::string_view pattern, Setting &setting, double factor);
    /// Add a command that takes no parameters and cannot fail.
    void onAction(std::string_view pattern, const std::function<void()> &action);
    /// Add a query that takes no parameters and cannot fail.
    void onAnswer(std::string_view pattern, const std::function<std::string()> &text);
    /// Add the command and the query FORMat[:DATA], which choose how an instrument answers its
    /// traces: as decimal text (ASCii, at power-up) or as binary blocks (REAL,32).
    void addFormatCommands();

    /// Returns samples in the present format: numbers separated by commas, or one definite-length
    /// block of little-endian 32-bit floats (IEEE 488.2 8.7.9).
    [[nodiscard]] std::string traceText(const std::vector<float> &samples) const;
    /// Set how many seconds the record or sweep lasts that has just started.
    void setDuration(double seconds) { duration = seconds; }
    /// Set every setting to its value at power-up, as *RST does.
    virtual void reset();
    /// Called after each message.
    virtual void messageExecuted() {}

private:
    struct Command
    {
        Pattern pattern;
        bool isQuery;
        ParameterCount count;
        Handler handler;
    };

    void addCommonCommands();
    std::string takeError();
    std::string executeUnits(std::string_view message);
    const Command *find(std::string_view header, Suffixes *suffixes, Error *error) const;
    Error executeUnit(std::string_view unit, std::string *path, std::string *answer);

    std::string identity;
    std::deque<Setting> settings; // a deque, since the commands point to its elements
    std::vector<Command> commands;
    bool isRealFormat = false;
    std::deque<Error> errors;    // oldest first
    unsigned eventStatus = 0x80; // "power on" (IEEE 488.2 11.5.1)
    Setting *eventEnable = nullptr;
    Setting *serviceEnable = nullptr;
    bool hasAnswered = false; // whether the present message has an answer so far
    double duration = 0.0;
};

} // namespace simulator
