#include "simulator/BenchInstrument.h"

#include "simulator/scpi/Number.h"

namespace simulator {

BenchInstrument::BenchInstrument(const std::string &identity, RadioLink &link)
    : Instrument(identity), link(link)
{
    onQuery("BENCh:EVENt", {},
            [this](const Call &, std::string *answer) { return answerEvent(answer); });
}

Error BenchInstrument::answerEvent(std::string *answer) const
{
    if (link.eventCount() == 0) {
        return scpi::dataStale;
    }
    const RadioLinkEvent &event = link.lastEvent();
    const TrueInstants &truth = event.instants();
    *answer = std::to_string(link.eventCount());
    for (const double value : {truth.source, 1e3 * (truth.rf - truth.source), truth.hdmiDelayMs,
                               1e3 * (truth.sink - truth.source)}) {
        *answer += ',' + numberText(value);
    }
    *answer += event.isOverloaded() ? ",1" : ",0";
    return scpi::noError;
}

} // namespace simulator
