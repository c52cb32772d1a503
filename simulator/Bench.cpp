#include "simulator/Bench.h"

#include "simulator/Oscilloscope.h"
#include "simulator/scpi/Number.h"
#include "simulator/SpectrumAnalyzer.h"
#include "simulator/VideoAnalyzer.h"

#include <utility>

namespace simulator {

namespace {

using Call = Instrument::Call;

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
        if (const Error error = parseNumber(call.parameters[1], "S", longest, &changed.mean)) {
            return error;
        }
        if (const Error error = parseNumber(call.parameters[2], "S", longest, &changed.spread)) {
            return error;
        }
        *latency = changed;
        return scpi::noError;
    }
    return scpi::illegalParameterValue;
}

/// BENCh:EVENt?
Error answerEvent(const RadioLink &link, std::string *answer)
{
    if (link.eventCount() == 0) {
        return scpi::dataStale;
    }
    const RadioLinkEvent &event = link.lastEvent();
    const TrueInstants &truth = event.instants();
    *answer = std::to_string(link.eventCount());
    for (const double value : {truth.source, 1e3 * (truth.rf - truth.source), truth.hdmiDelayMs,
                               1e3 * (truth.sink - truth.source)}) {
        *answer += ',' + numericResponse(value);
    }
    *answer += event.isOverloaded() ? ",1" : ",0";
    return scpi::noError;
}

/// Have an instrument take the commands for the radio link, which every instrument of the bench
/// has.
void addLinkCommands(Instrument *instrument, RadioLink *link)
{
    instrument->onQuery("BENCh:EVENt", {}, [link](const Call &, std::string *answer) {
        return answerEvent(*link, answer);
    });
    instrument->onCommand("BENCh:LATency", {3, 3}, [link](const Call &call, std::string *) {
        return changeLatency(call, &link->statistics);
    });
    instrument->onCommand("BENCh:OVERload", {1, 1}, [link](const Call &call, std::string *) {
        return parseNumber(call.parameters[0], "", 1.0, &link->statistics.overloads);
    });
    instrument->onCommand("BENCh:SEED", {1, 1}, [link](const Call &call, std::string *) {
        constexpr double last = 4294967295.0;
        double seed = 0.0;
        const Error error = parseNumber(call.parameters[0], "", last, &seed);
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
    add("analyzer", std::make_unique<SpectrumAnalyzer>(spaDialect, link));
    add("analyzer-qan", std::make_unique<SpectrumAnalyzer>(qanDialect, link));
    add("analyzer-qel", std::make_unique<SpectrumAnalyzer>(qelDialect, link));
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
