#include "setup/SpectrumAnalyzerSetup.h"

#include "instrument/CommandChain.h"
#include "instrument/InstrumentIo.h"
#include "instrument/NumberText.h"
#include "setup/InstrumentSession.h"

namespace {

constexpr ViAttrState spectrumAnalyzerTimeout = 5000; // ms
constexpr int sweepPoints = 20001;
constexpr double triggerHoldOff = -0.6; // seconds: the sweep begins before the trigger

/// Open the analyzer and ask for its identity in upper case; empty when there is no answer.
QString openAndIdentify(ViSession resourceManager, const QString &resource, ViSession *session)
{
    QString identity;
    if (reopenSession(resourceManager, resource, spectrumAnalyzerTimeout, session) == VI_SUCCESS) {
        iaQueryf_s(*session, "*IDN?\n", &identity);
    }
    return identity.toUpper();
}

} // namespace

ViStatus setUpSpectrumAnalyzer(ViSession resourceManager, const SpectrumAnalyzerSettings &settings,
                               ViSession *session)
{
    const QString identity = openAndIdentify(resourceManager, settings.resource, session);
    // "QAN" is part of "QANX" already. Both names stand here so that a search finds either.
    if (identity.contains("QAN") || identity.contains("QANX")) {
        sendIgnoringFailure(*session, {"FREQ:MODE SW;*OPC?\n"});
    }

    const QStringList zeroSpan = {
        "DISP:TRAC:Y:RLEV 0.0;*OPC?\n",
        "INP1:ATT 0.0;*OPC?\n",
        "FREQ:CENT " + numberText(settings.centerFrequency) + ";*OPC?\n",
        "FREQ:SPAN 0;*OPC?\n",
        "TRIG1:SOUR EXT;*OPC?\n",
    };
    const QStringList sweepAndBandwidths = {
        "SWE:TIME " + numberText(recordSpan(settings.oscilloscopeType)) + ";*OPC?\n",
        "SWE:POIN " + QString::number(sweepPoints) + ";*OPC?\n",
        "SWE:TYPE SWE;SWE:OPT;BWID:FFT AUTO;*OPC?\n",
        "BWID 50e6;*OPC?\n",
        "BWID:VID 20e3;*OPC?\n",
    };
    // The slope is sent a second time deliberately; it has no further effect.
    QStringList triggerAndIfOutput = {
        "TRIG1:HOLD " + numberText(triggerHoldOff) + ";*OPC?\n",
        "TRIG1:SLOP POS;*OPC?\n",
        "TRIG1:SLOP POS;*OPC?\n",
    };
    if (!identity.contains("QEL")) { // that family is set up without its IF output
        triggerAndIfOutput += {
            "OUTP:IF VID;*OPC?\n",
            "OUTP:IF:IFFR 2.0;*OPC?\n",
        };
    }

    sendIgnoringFailure(*session, zeroSpan);
    const ViStatus status = sendOrStop(*session, sweepAndBandwidths);
    if (status != VI_SUCCESS) {
        return status;
    }
    sendIgnoringFailure(*session, triggerAndIfOutput);
    return iaGpibControlREN(*session, VI_GPIB_REN_ADDRESS_GTL);
}
