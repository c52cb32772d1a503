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
struct Instants
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
};

/// One change at the source and what follows it along the link.
class LinkEvent
{
public:
    /// `number` seeds the noise. The event is a record of nothing but dark, floor and beacons.
    LinkEvent(std::uint32_t number, double beaconPhase);

    /// An event whose latencies come from `generator`, always with the same number of draws.
    /// `triggerLevel` in volts is what the source passes at time zero; it lies between dark and
    /// bright.
    LinkEvent(std::uint32_t number, double triggerLevel, std::mt19937 &generator);

    /// The samples of `signal` on `grid`. The same arguments always give the same samples.
    [[nodiscard]] std::vector<float> trace(Signal signal, const TimeGrid &grid) const;

    [[nodiscard]] const Instants &instants() const { return instants_; }
    /// Whether the source record starts implausibly high.
    [[nodiscard]] bool isOverloaded() const { return overloaded_; }

private:
    [[nodiscard]] double sourceVolts(double time) const;
    [[nodiscard]] double sinkVolts(double time) const;
    [[nodiscard]] double rfDbm(double time) const;

    std::uint32_t number_;
    Instants instants_;
    double sourceStart_; // where the rises begin, seconds; infinite when there is none
    double sinkStart_;
    double beaconPhase_;
    bool overloaded_ = false;
};

/// The wireless link that every instrument of the bench looks at: the same sequence of events at
/// every start.
class LinkModel
{
public:
    /// Lets the oscilloscope's trigger catch the next change at the source. Without a level that
    /// the source passes (volts) the record is forced and shows no event.
    void trigger(std::optional<double> level);

    /// What the instruments show now; before any trigger the sequence's first event.
    const LinkEvent &lastEvent();

    /// How many events there were, forced records not counted.
    [[nodiscard]] std::uint32_t eventCount() const { return eventCount_; }

private:
    // The generator's standard seed, so that every bench tells the same story.
    std::mt19937 generator_{std::mt19937::default_seed}; // NOLINT(bugprone-random-generator-seed)
    std::optional<LinkEvent> event_;
    std::uint32_t recordCount_ = 0;
    std::uint32_t eventCount_ = 0;
};

/// Trigger level of the oscilloscopes at power-up, in volts.
constexpr double powerUpTriggerLevel = 0.027;

} // namespace simulator
