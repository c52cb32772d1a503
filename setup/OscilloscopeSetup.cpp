#include "setup/OscilloscopeSetup.h"

#include "instrument/CommandChain.h"
#include "instrument/InstrumentIo.h"
#include "instrument/NumberText.h"
#include "setup/InstrumentSession.h"

namespace {

constexpr ViAttrState oscilloscopeTimeout = 5000; // ms
constexpr int recordLength = 20000;               // samples

ViStatus setUpKvx(ViSession session, double triggerLevel, bool rfFromOscilloscope)
{
    const QStringList recordAndChannels = {
        "ACQ:POIN:AUTO 1;*OPC?\n",
        "TIM:RANG 1.0;*OPC?\n",
        "ACQ:POIN " + QString::number(recordLength) + ";*OPC?\n",
        "EXP:WAV:RAW ON;*OPC?\n",
        "CHAN1 ON;STOP;*OPC?\n",
        "SYST:DISP:UPD ON;*OPC?\n",
        "CHAN1 ON;CHAN1:RANG 0.5;*OPC?\n",
        "CHAN1:POS -2.0;CHAN1:COUP DC;*OPC?\n",
        "CHAN2 ON;CHAN2:RANG 0.5;*OPC?\n",
        "CHAN2:POS -2.0;CHAN2:COUP DC;*OPC?\n",
    };
    const QStringList ifChannel = {
        "CHAN3 ON;CHAN3:RANG 0.5;*OPC?\n",
        "CHAN3:POS -3.0;CHAN3:COUP DC;*OPC?\n",
        "CHAN3:TYPE RMS;*OPC?\n",
    };
    const QStringList timeBase = {
        "TIM:SCAL 100e-3;TIM:REF 50;TRIG3:OFFS:LIM 0;*OPC?\n",
    };
    // clang-format off: keep the commands in columns
    const QStringList triggerAndExport = {
        "CHAN3:SCAL 200e-3;*OPC?\n",    "CHAN:DIGF:CUT 100e3;*OPC?\n",
        "CHAN1:BAND B20;*OPC?\n",       "TRIG1:LEV1 " + numberText(triggerLevel) + ";*OPC?\n",
        "TRIG1:MODE NORM;*OPC?\n",      "TRIG1:ANED:NREJ ON;*OPC?\n",
        "TRIG1:HOLD:MODE TIME;*OPC?\n", "TRIG1:HOLD:TIME 1.3;*OPC?\n",
        "TRIG1:OUT:STAT ON;*OPC?\n",    "FORM ASC;*OPC?\n",
        "EXP:WAV:INCX OFF;*OPC?\n",     "RUN;*OPC?\n",
    };
    // clang-format on

    ViStatus status = sendOrStop(session, recordAndChannels);
    if (status == VI_SUCCESS && rfFromOscilloscope) {
        status = sendOrFallBack(session, ifChannel); // the first one alone, if it succeeds
    }
    if (status != VI_SUCCESS) {
        return status; // without Go To Local, which is sent from here on only
    }
    sendIgnoringFailure(session, timeBase);
    status = sendOrStop(session, triggerAndExport);
    iaGpibControlREN(session, VI_GPIB_REN_ADDRESS_GTL);
    return status;
}

ViStatus setUpLpa4004(ViSession session, double triggerLevel)
{
    const QStringList commands = {
        "TRIG:B:ENAB OFF;*OPC?\n",
        "TRIG:A:TYPE EDGE;*OPC?\n",
        "TRIG:A:SOUR CH1;*OPC?\n",
        "TRIG:A:ENAB ON;*OPC?\n",
        "TRIG:A:MODE NORM;*OPC?\n",
        "TRIG:A:EDGE:SLOP POS;*OPC?\n",
        "TRIG:A:EDGE:COUP DC;*OPC?\n",
        "TRIG:A:EDGE:FILT:LPAS ON;*OPC?\n",
        "TRIG:A:LEV1 " + numberText(triggerLevel) + ";*OPC?\n",
        "ACQ:WRAT MSAM;*OPC?\n",
        "TIM:SCAL 0.1;*OPC?\n",
        "TIM:POS 0.0;*OPC?\n",
        "TIM:REF 50;*OPC?\n",
        "CHAN2:STAT ON;*OPC?\n",
        "CHAN2:SCAL 0.05;*OPC?\n",
        "CHAN2:POS -3.0;*OPC?\n",
        "CHAN2:COUP DCL;*OPC?\n",
        "CHAN2:TYPE SAMP;*OPC?\n",
        "CHAN2:BAND B20;*OPC?\n",
        "CHAN1:STAT ON;*OPC?\n",
        "CHAN1:SCAL 0.05;*OPC?\n",
        "CHAN1:POS -3.0;*OPC?\n",
        "CHAN1:COUP DCL;*OPC?\n",
        "CHAN1:TYPE SAMP;*OPC?\n",
        "CHAN1:BAND B20;*OPC?\n",
    };

    const ViStatus status = sendOrStop(session, commands);
    if (status == VI_SUCCESS) {
        iaGpibControlREN(session, VI_GPIB_REN_ADDRESS_GTL);
    }
    return status;
}

} // namespace

ViStatus setUpOscilloscope(ViSession resourceManager, const OscilloscopeSettings &settings,
                           ViSession *session)
{
    ViStatus status =
        reopenSession(resourceManager, settings.resource, oscilloscopeTimeout, session);
    if (status == VI_SUCCESS) {
        // Removes the oldest entry of the error queue, and shows that the instrument answers.
        status = sendOrStop(*session, {"SYST:ERR?\n"});
    }
    if (status == VI_SUCCESS && settings.reset) {
        sendIgnoringFailure(*session, {"*RST;*OPC?\n"});
    }
    // These commands are sent even if a step before failed, and its status is dropped. Without a
    // session the first command fails.
    switch (settings.oscilloscopeType) {
    case OscilloscopeType::Kvx:
        status = setUpKvx(*session, settings.triggerLevel, settings.rfFromOscilloscope);
        break;
    case OscilloscopeType::Lpa4004:
        status = setUpLpa4004(*session, settings.triggerLevel);
        break;
    }
    return status;
}
