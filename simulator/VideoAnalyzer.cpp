#include "simulator/VideoAnalyzer.h"

#include "simulator/ScpiNumber.h"

#include <cmath>

namespace simulator {

VideoAnalyzer::VideoAnalyzer(VideoAnalyzerState &state, LinkModel &link)
    : Instrument("Varnholt,VMX100,100301,1.00",
                 {
                     boolean("SYSTem:DISPlay:UPDate", true),
                     number("CONFigure:AVDA:TTV:APL:THReshold", 0.0, 100.0, 50.0),
                     number("CONFigure:AVDA:TTV:APL:HYSTeresis", 0.0, 100.0, 10.0),
                 },
                 state),
      state_(state),
      link_(link)
{
    onEvent("INITiate:AVDA", [this] {
        state_.measuring = true;
        state_.eventsBefore = link_.eventCount();
    });
    onAnswer("READ:AVDA:TTV:STATus", [this] { return std::string(state_.measuring ? "1" : "0"); });
    onAnswer("READ:AVDA:TTV:COUNt", [this] {
        return std::to_string(state_.measuring ? link_.eventCount() - state_.eventsBefore : 0);
    });
    onQuery("READ:AVDA:TTV:VALue",
            [this](const Call &call, std::string &answer) { return answerDelay(call, answer); });
}

void VideoAnalyzer::reset()
{
    Instrument::reset();
    state_.measuring = false;
}

int VideoAnalyzer::answerDelay(const Call &call, std::string &answer)
{
    if (!call.parameters.empty()) {
        return scpi::parameterNotAllowed;
    }
    const double delayMs = link_.lastEvent().instants().hdmiDelayMs;
    if (!state_.measuring || std::isnan(delayMs)) {
        return scpi::dataStale;
    }
    answer = numberText(delayMs);
    return scpi::noError;
}

} // namespace simulator
