#include "simulator/VideoAnalyzer.h"

#include "simulator/ScpiNumber.h"

#include <cmath>

namespace simulator {

VideoAnalyzer::VideoAnalyzer(LinkModel &link)
    : Instrument("Varnholt,VMX100,100301,1.00",
                 {
                     boolean("SYSTem:DISPlay:UPDate", true),
                     number("CONFigure:AVDA:TTV:APL:THReshold", 0.0, 100.0, 50.0),
                     number("CONFigure:AVDA:TTV:APL:HYSTeresis", 0.0, 100.0, 10.0),
                 }),
      link_(link)
{
    onEvent("INITiate:AVDA", [this] {
        measuring_ = true;
        eventsBefore_ = link_.eventCount();
    });
    onAnswer("READ:AVDA:TTV:STATus", [this] { return std::string(measuring_ ? "1" : "0"); });
    onAnswer("READ:AVDA:TTV:COUNt", [this] {
        return std::to_string(measuring_ ? link_.eventCount() - eventsBefore_ : 0);
    });
    onQuery("READ:AVDA:TTV:VALue",
            [this](const Call &call, std::string &answer) { return answerDelay(call, answer); });
}

void VideoAnalyzer::reset()
{
    Instrument::reset();
    measuring_ = false;
}

int VideoAnalyzer::answerDelay(const Call &call, std::string &answer)
{
    if (!call.parameters.empty()) {
        return scpi::parameterNotAllowed;
    }
    const double delayMs = link_.lastEvent().instants().hdmiDelayMs;
    if (!measuring_ || std::isnan(delayMs)) {
        return scpi::dataStale;
    }
    answer = numberText(delayMs);
    return scpi::noError;
}

} // namespace simulator
