#include "setup/VideoAnalyzerSetup.h"

#include "instrument/CommandChain.h"
#include "instrument/InstrumentIo.h"
#include "instrument/NumberText.h"
#include "setup/InstrumentSession.h"

namespace {

constexpr ViAttrState videoAnalyzerTimeout = 10000; // ms

} // namespace

ViStatus setUpVideoAnalyzer(ViSession resourceManager, const VideoAnalyzerSettings &settings,
                            ViSession spectrumAnalyzer, ViSession *session)
{
    const QStringList delayMeasurement = {
        "SYST:DISP:UPD ON;*OPC?\n",
        "CONF:AVDA:TTV:APL:THR " + numberText(settings.threshold) + ";*OPC?\n",
        "CONF:AVDA:TTV:APL:HYST 5;*OPC?\n",
        "INIT:AVDA;*OPC?\n",
    };

    ViStatus status =
        reopenSession(resourceManager, settings.resource, videoAnalyzerTimeout, session);
    if (status != VI_SUCCESS) {
        return status;
    }
    if (settings.reset) {
        sendIgnoringFailure(*session, {"*RST;*OPC?\n"});
    }
    status = sendOrStop(*session, delayMeasurement);
    if (status != VI_SUCCESS) {
        return status;
    }
    return iaGpibControlREN(spectrumAnalyzer, VI_GPIB_REN_ADDRESS_GTL);
}
