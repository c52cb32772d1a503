#include "simulator/server/Laboratory.h"

#include "simulator/scpi/Number.h"

namespace server {

namespace {

using simulator::Error;
using Call = simulator::Instrument::Call;
namespace scpi = simulator::scpi;

/// Read a parameter that may be from 0 to `most`.
Error parse(std::string_view text, const char *unit, double most, double *value)
{
    double number = 0.0;
    const Error error = simulator::parseNumber(text, unit, &number);
    if (!error && number >= 0.0 && number <= most) {
        *value = number;
        return scpi::noError;
    }
    return error ? error : scpi::dataOutOfRange;
}

/// BENCh:LATency RF|HDMI|SINK,mean,spread
Error changeLatency(const Call &call, simulator::RadioLinkStatistics *statistics)
{
    simulator::Latency *latency = nullptr;
    for (const auto &[name, which] : {std::pair{"RF", &statistics->rf},
                                      {"HDMI", &statistics->hdmi},
                                      {"SINK", &statistics->sink}}) {
        latency = simulator::isMnemonic(name, call.parameters[0]) ? which : latency;
    }
    simulator::Latency changed{};
    Error error = latency == nullptr ? scpi::illegalParameterValue
                                     : parse(call.parameters[1], "S", 10.0, &changed.mean);
    error = error ? error : parse(call.parameters[2], "S", 10.0, &changed.spread);
    if (!error) {
        *latency = changed;
    }
    return error;
}

/// Let any instrument take the orders for the link that all look at.
void addLinkOrders(simulator::Instrument *instrument, simulator::RadioLink *link)
{
    instrument->onCommand("BENCh:LATency", {3, 3}, [link](const Call &call, std::string *) {
        return changeLatency(call, &link->statistics);
    });
    instrument->onCommand("BENCh:OVERload", {1, 1}, [link](const Call &call, std::string *) {
        return parse(call.parameters[0], "", 1.0, &link->statistics.overloads);
    });
    instrument->onCommand("BENCh:SEED", {1, 1}, [link](const Call &call, std::string *) {
        double seed = 0.0;
        const Error error = parse(call.parameters[0], "", 4294967295.0, &seed);
        if (!error) {
            link->seed(static_cast<std::uint32_t>(seed));
        }
        return error;
    });
}

} // namespace

Laboratory::Laboratory(double timeScale)
{
    for (const std::string &host : bench.hosts()) {
        addLinkOrders(bench.find(host), &bench.radioLink());
        devices.push_back(std::make_unique<Device>(host, *bench.find(host), timeScale));
    }
}

Device *Laboratory::find(const std::string &name) const
{
    for (const auto &device : devices) {
        if (simulator::upperCase(device->name) == simulator::upperCase(name)) {
            return device.get();
        }
    }
    return nullptr;
}

} // namespace server
