#include "simulator/Bench.h"

#include "simulator/Oscilloscope.h"
#include "simulator/scpi/Number.h"
#include "simulator/SpectrumAnalyzer.h"
#include "simulator/VideoAnalyzer.h"

#include <utility>

namespace simulator {

namespace {

using Call = Instrument::Call;

/// Read a parameter from 0 to `most`; the value is untouched after an error.
Error parse(std::string_view text, const char *unit, double most, double *value)
{
    double number = 0.0;
    if (const Error error = parseNumber(text, unit, &number)) {
        return error;
    }
    if (number < 0.0 || number > most) {
        return scpi::dataOutOfRange;
    }
    *value = number;
    return scpi::noError;
}

/// BENCh:LATency RF|HDMI|SINK,mean,spread
Error changeLatency(const Call &call, RadioLinkStatistics *statistics)
{
    constexpr double longest = 10.0; // s
    for (const auto &[name, latency] : {std::pair{"RF", &statistics->rf},
                                        {"HDMI", &statistics->hdmi},
                                        {"SINK", &statistics->sink}}) {
        if (!isMnemonic(name, call.parameters[0])) {
            continue;
        }
        Latency changed{};
        if (const Error error = parse(call.parameters[1], "S", longest, &changed.mean)) {
            return error;
        }
        const Error error = parse(call.parameters[2], "S", longest, &changed.spread);
        *latency = error ? *latency : changed;
        return error;
    }
    return scpi::illegalParameterValue;
}

/// Have an instrument take the commands that change the link, which all instruments look at.
void addLinkCommands(Instrument *instrument, RadioLink *link)
{
    instrument->onCommand("BENCh:LATency", {3, 3}, [link](const Call &call, std::string *) {
        return changeLatency(call, &link->statistics);
    });
    instrument->onCommand("BENCh:OVERload", {1, 1}, [link](const Call &call, std::string *) {
        return parse(call.parameters[0], "", 1.0, &link->statistics.overloads);
    });
    instrument->onCommand("BENCh:SEED", {1, 1}, [link](const Call &call, std::string *) {
        constexpr double last = 4294967295.0;
        double seed = 0.0;
        const Error error = parse(call.parameters[0], "", last, &seed);
        if (!error) {
            link->seed(static_cast<std::uint32_t>(seed));
        }
        return error;
    });
}

} // namespace

Bench::Bench(double timeScale)
{
    const auto add = [&](const char *name, std::unique_ptr<Instrument> instrument) {
        addLinkCommands(instrument.get(), &link);
        all.push_back(std::make_unique<Device>(name, std::move(instrument), timeScale));
    };
    add("scope", std::make_unique<Oscilloscope>(lpa4004Dialect(), link));
    add("scope-kvx", std::make_unique<Oscilloscope>(kvxDialect(), link));
    add("analyzer", std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Plain, link));
    add("analyzer-qan", std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Qan, link));
    add("analyzer-qel", std::make_unique<SpectrumAnalyzer>(AnalyzerFamily::Qel, link));
    add("video", std::make_unique<VideoAnalyzer>(link));
}

Device *Bench::find(std::string_view name) const
{
    for (const auto &device : all) {
        if (upperCase(device->name) == upperCase(name)) {
            return device.get();
        }
    }
    return nullptr;
}

} // namespace simulator
