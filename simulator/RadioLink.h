#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace simulator {

/// Equally spaced instants in seconds after the trigger. The first is `start`, the last is
/// `start + span`.
struct TimeGrid
{
    double start;
    double span;
    std::size_t points;
};

/// The true instants of one event, in seconds after the trigger, and its HDMI delay. All are
/// not-a-number when there was no event.
struct TrueInstants
{
    double source;      ///< the source without noise is 35 mV above dark
    double rf;          ///< the first RF burst starts
    double sink;        ///< the sink without noise passes 60 mV
    double hdmiDelayMs; ///< counted from the source's instant
};

/// What an instrument's input can be wired to.
enum class Signal : std::uint32_t
{
    Source,      ///< light sensor at the source, volts
    Sink,        ///< light sensor at the sink, volts
    RfPower,     ///< power on the radio channel, dBm
    Video,       ///< the analyzer's video output, volts, linear in dB
    Unconnected, ///< an open input, volts
    Carrier,     ///< the analyzer's IF output, volts
};

/// How an analyzer receives the radio channel.
struct Receiver
{
    bool isOnChannel = false;      ///< a receiver beside the channel shows only the noise floor
    double carrierFrequency = 0.0; ///< of its IF output, hertz
};

/// Returns whether a receiver with this centre frequency and bandwidth, both in hertz, receives
/// the radio link's channel.
bool hearsChannel(double frequency, double bandwidth);

/// The distribution of a delay in seconds: triangular, mean plus or minus spread.
struct Latency
{
    double mean;
    double spread;
};

/// How the events of a radio link are distributed.
struct RadioLinkStatistics
{
    Latency rf{45e-3, 8e-3};   ///< from the source to the first burst
    Latency hdmi{95e-3, 4e-3}; ///< from the source to the sink's HDMI output
    /// From the source until the picture has reached the sink. The sink then waits for its next
    /// display frame and becomes bright, which takes 10.7 ms on average: 120 ms in all.
    Latency sink{109.3e-3, 8e-3};
    double overloads = 1.0 / 16.0; ///< share of the records
};

/// One change at the source and what follows from it on the radio link.
class RadioLinkEvent
{
public:
    /// Make a record without an event: dark screens, the noise floor and beacons. The number seeds
    /// the noise.
    RadioLinkEvent(std::uint32_t number, double beaconPhase);

    /// Make an event with random latencies. Every event draws the same number of random values. The
    /// source passes the trigger level at time zero; the level in volts lies between dark and
    /// bright.
    RadioLinkEvent(std::uint32_t number, double triggerLevel, const RadioLinkStatistics &statistics,
                   std::mt19937 *generator);

    /// Sample a signal. The same arguments always give the same samples.
    [[nodiscard]] std::vector<float> trace(Signal signal, const TimeGrid &grid,
                                           const Receiver &receiver = {}) const;

    [[nodiscard]] const TrueInstants &instants() const { return truth; }
    /// Returns whether the source's record starts implausibly high.
    [[nodiscard]] bool isOverloaded() const { return overloaded; }

private:
    [[nodiscard]] double sourceVolts(double time) const;
    [[nodiscard]] double sinkVolts(double time) const;
    [[nodiscard]] double rfDbm(double time, const Receiver &receiver) const;

    std::uint32_t number;
    TrueInstants truth;
    double sourceStart; // when the source begins to rise, seconds; infinite without an event
    double sinkStart;   // the same of the sink
    double beaconPhase;
    bool overloaded = false;
};

/// What the cable from the analyzers to the oscilloscopes' channel 3 carries.
struct AnalyzerOutput
{
    Signal signal = Signal::Carrier;
    Receiver receiver{};
};

/// The radio link that all instruments of the bench observe. Its events are the same at every
/// start.
class RadioLink
{
public:
    /// Record the next change at the source, as an oscilloscope's trigger does. Without a trigger
    /// level in volts, or with one that the source never passes, the record shows no event.
    void trigger(std::optional<double> level);

    /// Returns what the last trigger recorded, with or without an event.
    [[nodiscard]] const RadioLinkEvent &lastRecord() const { return record; }
    /// Returns the last event. Its instants are not-a-number when there was none.
    [[nodiscard]] const RadioLinkEvent &lastEvent() const { return event; }
    /// Returns the number of events. Records without an event do not count.
    [[nodiscard]] std::uint32_t eventCount() const { return events; }
    /// Make an analyzer's sweep that no trigger started. Each shows other noise and beacons.
    RadioLinkEvent freeSweep();

    /// Begin another sequence of events.
    void seed(std::uint32_t number) { generator.seed(number); }
    RadioLinkStatistics statistics; ///< of the events to come

    [[nodiscard]] const AnalyzerOutput &analyzerOutput() const { return output; }
    void connect(const AnalyzerOutput &analyzer) { output = analyzer; }

private:
    // The fixed seed makes the events the same at every start.
    std::mt19937 generator{std::mt19937::default_seed}; // NOLINT(bugprone-random-generator-seed)
    RadioLinkEvent record{0, 0.0};
    RadioLinkEvent event{0, 0.0};
    std::uint32_t records = 0;
    std::uint32_t events = 0;
    std::uint32_t sweeps = 0;
    AnalyzerOutput output;
};

/// Trigger level of the oscilloscopes at power-up, in volts.
constexpr double powerUpTriggerLevel = 0.027;

} // namespace simulator
