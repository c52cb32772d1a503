#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace simulator {

/// Equally spaced instants: sample k of `points` lies at start + span * k / (points - 1), in
/// seconds after the trigger.
struct TimeGrid
{
    double start;
    double span;
    std::size_t points;
};

/// The true instants of one event, in seconds after the trigger: where the noiseless source stands
/// 35 mV above dark, where the first RF burst starts, where the noiseless sink passes 60 mV. The
/// HDMI delay counts from the source instant. All are not-a-number when nothing happened.
struct TrueInstants
{
    double source;
    double rf;
    double sink;
    double hdmiDelayMs;
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

/// How an analyzer looks at the radio.
struct Receiver
{
    bool isOnChannel = false;      ///< otherwise there is nothing but the floor
    double carrierFrequency = 0.0; ///< of its IF output, hertz
};

/// Tell whether a receiver of so much bandwidth around a frequency hears the link's channel; both
/// in hertz.
bool hearsChannel(double frequency, double bandwidth);

/// The distribution of a delay in seconds: triangular, mean plus or minus spread.
struct Latency
{
    double mean;
    double spread;
};

/// How the link's events are distributed.
struct RadioLinkStatistics
{
    Latency rf{45e-3, 8e-3}; ///< from the source to the first burst
    Latency hdmi{95e-3, 4e-3};
    /// To the sink, which then waits for its next display frame and rises to its visible level.
    /// That adds 10.7 ms on average: 120 ms in all.
    Latency sink{109.3e-3, 8e-3};
    double overloads = 1.0 / 16.0; ///< share of the records
};

/// One change at the source and what follows it along the link.
class RadioLinkEvent
{
public:
    /// Make a record of nothing but dark, floor and beacons; the number seeds the noise.
    RadioLinkEvent(std::uint32_t number, double beaconPhase);

    /// Make an event whose latencies come from the generator, always with the same number of draws.
    /// The trigger level in volts is what the source passes at time zero; it lies between dark and
    /// bright.
    RadioLinkEvent(std::uint32_t number, double triggerLevel, const RadioLinkStatistics &statistics,
                   std::mt19937 *generator);

    /// Sample a signal. The same arguments always give the same samples.
    [[nodiscard]] std::vector<float> trace(Signal signal, const TimeGrid &grid,
                                           const Receiver &receiver = {}) const;

    [[nodiscard]] const TrueInstants &instants() const { return truth; }
    /// Tell whether the source record starts implausibly high.
    [[nodiscard]] bool isOverloaded() const { return overloaded; }

private:
    [[nodiscard]] double sourceVolts(double time) const;
    [[nodiscard]] double sinkVolts(double time) const;
    [[nodiscard]] double rfDbm(double time, const Receiver &receiver) const;

    std::uint32_t number;
    TrueInstants truth;
    double sourceStart; // where the rises begin, seconds; infinite when there is none
    double sinkStart;
    double beaconPhase;
    bool overloaded = false;
};

/// What the line to the oscilloscopes' channel 3 carries.
struct AnalyzerOutput
{
    Signal signal = Signal::Carrier;
    Receiver receiver{};
};

/// The wireless link that every instrument of the bench looks at: the same sequence of events at
/// every start.
class RadioLink
{
public:
    /// Let an oscilloscope's trigger catch the next change at the source. Without a level that the
    /// source passes (volts) the record is forced and shows no event.
    void trigger(std::optional<double> level);

    /// Tell what the last trigger caught, forced records included; at first an empty one.
    [[nodiscard]] const RadioLinkEvent &lastRecord() const { return record; }
    /// Tell the last event; without instants when there was none.
    [[nodiscard]] const RadioLinkEvent &lastEvent() const { return event; }
    /// Count the events, forced records not.
    [[nodiscard]] std::uint32_t eventCount() const { return events; }
    /// Make a sweep that nothing triggers; no two are alike.
    RadioLinkEvent freeSweep();

    /// Begin another sequence of events.
    void seed(std::uint32_t number) { generator.seed(number); }
    RadioLinkStatistics statistics; ///< of the events to come

    [[nodiscard]] const AnalyzerOutput &analyzerOutput() const { return output; }
    void connect(const AnalyzerOutput &analyzer) { output = analyzer; }

private:
    // The generator's standard seed, so that every bench tells the same story.
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
