#include "simulator/VideoAnalyzer.h"

#include "simulator/scpi/Number.h"

namespace simulator {

VideoAnalyzer::VideoAnalyzer(RadioLink &link)
    : Instrument("Varnholt,VMX100,100301,1.00"), link(link)
{
    add(boolean("SYSTem:DISPlay:UPDate", true));
    add(number("CONFigure:AVDA:TTV:APL:THReshold", 0.0, 100.0, 50.0, "PCT"));
    add(number("CONFigure:AVDA:TTV:APL:HYSTeresis", 0.0, 100.0, 10.0, "PCT"));
    onAction("INITiate:AVDA", [this] { eventsBefore = this->link.eventCount(); });
    onAnswer("READ:AVDA:TTV:STATus", [this] { return std::string(eventsBefore ? "1" : "0"); });
    onAnswer("READ:AVDA:TTV:COUNt", [this] { return std::to_string(count()); });
    onQuery("READ:AVDA:TTV:VALue", {},
            [this](const Call &, std::string *answer) { return answerDelay(answer); });
}

void VideoAnalyzer::reset()
{
    Instrument::reset();
    eventsBefore.reset();
}

std::uint32_t VideoAnalyzer::count()
{
    return eventsBefore ? link.eventCount() - *eventsBefore : 0;
}

Error VideoAnalyzer::answerDelay(std::string *answer)
{
    if (count() == 0) {
        return scpi::dataStale;
    }
    *answer = numericResponse(link.lastEvent().instants().hdmiDelayMs);
    return scpi::noError;
}

} // namespace simulator
