#include "simulator/RadioLink.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace simulator {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double noRise = std::numeric_limits<double>::infinity();
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

// Light sensors (volts, seconds). Both signals rise in the shape of a raised cosine.
constexpr double sourceDark = 0.005;
constexpr double sourceBright = 0.150;
constexpr double sourceRise = 1.5e-3;
constexpr double sourceVisible = sourceDark + 0.035; // the display has visibly changed
constexpr double sourceNoise = 2e-3;                 // peak
constexpr double sinkDark = 0.010;
constexpr double sinkBright = 0.120;
constexpr double sinkRise = 5e-3;
constexpr double sinkVisible = 0.060;
constexpr double sinkNoise = 1e-3;
constexpr double openInputNoise = 1e-3;

// An overloaded source sensor shows too high a voltage from the record's start on. The excess then
// decays (volts, seconds after the trigger).
constexpr double overloadVolts = 0.6;
constexpr double overloadEnd = -0.45;
constexpr double overloadDecay = 5e-3;
constexpr double overloadGone = overloadEnd + 40 * overloadDecay;

// Radio channel (dBm, seconds). A beacon must not be taken for a burst: at 20,000 points per second
// it covers fewer than eight samples, and it keeps a distance from the first burst.
constexpr double floorDbm = -75.0;
constexpr double beaconDbm = -45.0;
constexpr double burstDbm = -20.0;
constexpr double rfNoise = 1.5; // peak, dB
constexpr double beaconPeriod = 102.4e-3;
constexpr double beaconLength = 0.3e-3;
constexpr double beaconClearance = 2.5e-3; // shortest time from a beacon to the first burst
constexpr double burstLength = 4e-3;
constexpr double burstPeriod = 7e-3;
constexpr double burstTrain = 0.4;

// The radio link's channel (hertz).
constexpr double channelFrequency = 5.192e9;
constexpr double channelWidth = 20e6;

// The analyzer's video output: 10 mV per dB, 0.8 V at the bursts' power.
constexpr double videoVoltsPerDb = 0.01;
constexpr double videoAtBurst = 0.8;
constexpr double carrierAtBurst = 0.8; // its IF output, volts peak

constexpr double framePeriod = 1.0 / 60.0; // of the sink's display, seconds

/// Draw a random number from [0, 1). The distributions of the C++ library are not used, since they
/// differ between its makers.
double uniform(std::mt19937 *generator)
{
    return static_cast<double>((*generator)()) / 4294967296.0;
}

/// Draw a delay in seconds.
double draw(std::mt19937 *generator, const Latency &latency)
{
    const double first = uniform(generator);
    return latency.mean + latency.spread * (first + uniform(generator) - 1.0);
}

/// Returns a raised cosine from 0 to 1 while `u` goes from 0 to 1.
double riseShape(double u)
{
    return 0.5 * (1.0 - std::cos(pi * std::clamp(u, 0.0, 1.0)));
}

/// Returns how long after its start a rise of `duration` from `dark` to `bright` passes `level`.
double riseTime(double level, double dark, double bright, double duration)
{
    return duration * std::acos(1.0 - 2.0 * (level - dark) / (bright - dark)) / pi;
}

/// The integer hash "lowbias32" (Chris Wellons, public domain).
std::uint32_t hash(std::uint32_t x)
{
    x ^= x >> 16U;
    x *= 0x7feb352dU;
    x ^= x >> 15U;
    x *= 0x846ca68bU;
    x ^= x >> 16U;
    return x;
}

/// Returns the noise of sample `index` in the record with this `key`: triangular, in [-1, 1].
double noise(std::uint32_t key, std::uint32_t index)
{
    const std::uint32_t bits = hash(key + index);
    return static_cast<double>((bits & 0xffffU) + (bits >> 16U)) / 65535.0 - 1.0;
}

/// Returns the time since the last whole `period`, in [0, period).
double timeInPeriod(double time, double period)
{
    return time - period * std::floor(time / period);
}

/// Sample `level(time)` with noise.
template <typename Level>
std::vector<float> sampled(const TimeGrid &grid, std::uint32_t key, double noisePeak, Level level)
{
    std::vector<float> samples(grid.points);
    const double step = grid.points > 1 ? grid.span / static_cast<double>(grid.points - 1) : 0.0;
    for (std::size_t k = 0; k < samples.size(); ++k) {
        const double time = grid.start + step * static_cast<double>(k);
        samples[k] =
            static_cast<float>(level(time) + noisePeak * noise(key, static_cast<std::uint32_t>(k)));
    }
    return samples;
}

} // namespace

RadioLinkEvent::RadioLinkEvent(std::uint32_t number, double beaconPhase)
    : number(number),
      truth{unknown, unknown, unknown, unknown},
      sourceStart(noRise),
      sinkStart(noRise),
      beaconPhase(beaconPhase)
{
}

RadioLinkEvent::RadioLinkEvent(std::uint32_t number, double triggerLevel,
                               const RadioLinkStatistics &statistics, std::mt19937 *generator)
    : RadioLinkEvent(number, 0.0)
{
    sourceStart = -riseTime(triggerLevel, sourceDark, sourceBright, sourceRise);
    truth.source = sourceStart + riseTime(sourceVisible, sourceDark, sourceBright, sourceRise);

    truth.rf = truth.source + draw(generator, statistics.rf);
    truth.hdmiDelayMs = 1000.0 * draw(generator, statistics.hdmi);

    const double earliest = truth.source + draw(generator, statistics.sink);
    const double framePhase = framePeriod * uniform(generator);
    sinkStart = framePhase + framePeriod * std::ceil((earliest - framePhase) / framePeriod);
    truth.sink = sinkStart + riseTime(sinkVisible, sinkDark, sinkBright, sinkRise);

    beaconPhase = truth.rf + (beaconPeriod - beaconClearance) * uniform(generator);
    overloaded = uniform(generator) < statistics.overloads;
}

double RadioLinkEvent::sourceVolts(double time) const
{
    double volts =
        sourceDark + (sourceBright - sourceDark) * riseShape((time - sourceStart) / sourceRise);
    if (overloaded && time < overloadGone) {
        volts += overloadVolts *
                 (time < overloadEnd ? 1.0 : std::exp((overloadEnd - time) / overloadDecay));
    }
    return volts;
}

double RadioLinkEvent::sinkVolts(double time) const
{
    return sinkDark + (sinkBright - sinkDark) * riseShape((time - sinkStart) / sinkRise);
}

double RadioLinkEvent::rfDbm(double time, const Receiver &receiver) const
{
    if (!receiver.isOnChannel) {
        return floorDbm;
    }
    // Without an event this is not-a-number, and every comparison with it is false.
    const double sinceBurst = time - truth.rf;
    if (sinceBurst >= 0.0 && sinceBurst < burstTrain &&
        timeInPeriod(sinceBurst, burstPeriod) < burstLength) {
        return burstDbm;
    }
    return timeInPeriod(time - beaconPhase, beaconPeriod) < beaconLength ? beaconDbm : floorDbm;
}

std::vector<float> RadioLinkEvent::trace(Signal signal, const TimeGrid &grid,
                                         const Receiver &receiver) const
{
    const std::uint32_t key = hash(hash(number) + static_cast<std::uint32_t>(signal));
    switch (signal) {
    case Signal::Source:
        return sampled(grid, key, sourceNoise, [this](double time) { return sourceVolts(time); });
    case Signal::Sink:
        return sampled(grid, key, sinkNoise, [this](double time) { return sinkVolts(time); });
    case Signal::RfPower:
        return sampled(grid, key, rfNoise, [&](double time) { return rfDbm(time, receiver); });
    case Signal::Video:
        return sampled(grid, key, rfNoise * videoVoltsPerDb, [&](double time) {
            return videoAtBurst + videoVoltsPerDb * (rfDbm(time, receiver) - burstDbm);
        });
    case Signal::Carrier:
        return sampled(grid, key, rfNoise * videoVoltsPerDb, [&](double time) {
            const double amplitude =
                carrierAtBurst * std::pow(10.0, (rfDbm(time, receiver) - burstDbm) / 20.0);
            return amplitude * std::sin(2.0 * pi * receiver.carrierFrequency * time);
        });
    case Signal::Unconnected:
        break;
    }
    return sampled(grid, key, openInputNoise, [](double) { return 0.0; });
}

bool hearsChannel(double frequency, double bandwidth)
{
    return std::abs(frequency - channelFrequency) <= (channelWidth + bandwidth) / 2.0;
}

void RadioLink::trigger(std::optional<double> level)
{
    ++records;
    if (level && *level > sourceDark && *level < sourceBright) {
        event = RadioLinkEvent(records, *level, statistics, &generator);
        record = event;
        ++events;
    } else {
        record = RadioLinkEvent(records, 0.0);
    }
}

RadioLinkEvent RadioLink::freeSweep()
{
    constexpr std::uint32_t firstSweep = 0x80000000U; // keeps sweeps from the records' numbers
    const std::uint32_t number = firstSweep + ++sweeps;
    return {number, beaconPeriod * hash(number) / 4294967296.0};
}

} // namespace simulator
