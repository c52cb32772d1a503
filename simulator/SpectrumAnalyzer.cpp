#include "simulator/SpectrumAnalyzer.h"

#include "simulator/ScpiNumber.h"

#include <algorithm>

namespace simulator {

namespace {

const char *identity(AnalyzerFamily family)
{
    switch (family) {
    case AnalyzerFamily::Qan:
        return "Varnholt,QAN40,100202,1.00";
    case AnalyzerFamily::Qel:
        return "Varnholt,QEL8,100203,1.00";
    case AnalyzerFamily::Plain:
        break;
    }
    return "Varnholt,SPA26,100201,1.00";
}

std::vector<Setting> settingsOf(AnalyzerFamily family)
{
    std::vector<Setting> settings{
        number("DISPlay[:WINDow]:TRACe<1>:Y[:SCALe]:RLEVel", -130.0, 30.0, 0.0),
        number("INPut<1>:ATTenuation", 0.0, 75.0, 10.0),
        number("FREQuency:CENTer", 0.0, 40e9, 2.437e9),
        number("FREQuency:SPAN", 0.0, 0.0, 0.0), // the bench knows zero span only
        choice("TRIGger<1>[:SEQuence]:SOURce", "IMMediate|EXTernal"),
        number("TRIGger<1>[:SEQuence]:HOLDoff[:TIME]", -10.0, 30.0, 0.0),
        choice("TRIGger<1>[:SEQuence]:SLOPe", "POSitive|NEGative"),
        number("SWEep:TIME", 1e-6, 16000.0, 1.0),
        integer("SWEep:POINts", 101.0, 100001.0, 1001.0),
        choice("SWEep:TYPE", "AUTO|SWEep|FFT"),
        bareChoice("SWEep:OPTimize", "AUTO|DYNamic|SPEed"),
        choice("BWIDth:FFT", "AUTO|WIDE|NARRow"),
        number("BWIDth[:RESolution]", 1.0, 80e6, 3e6),
        number("BWIDth:VIDeo", 1.0, 80e6, 3e6),
    };
    if (family == AnalyzerFamily::Qan) {
        settings.push_back(choice("FREQuency:MODE", "CW|SWeep"));
    }
    if (family != AnalyzerFamily::Qel) {
        settings.push_back(choice("OUTPut<1>:IF[:SOURce]", "IF|VIDeo"));
        settings.push_back(number("OUTPut<1>:IF:IFFRequency", 0.0, 1e9, 2.0));
    }
    return settings;
}

} // namespace

SpectrumAnalyzer::SpectrumAnalyzer(AnalyzerFamily family, SpectrumAnalyzerState &state,
                                   LinkModel &link)
    : Instrument(identity(family), settingsOf(family), state), state_(state), link_(link)
{
    addFormatCommands(state_.format);
    onSwitch(
        "INITiate<1>:CONTinuous", [this](bool on) { state_.continuous = on; },
        [this] { return state_.continuous; });
    // A sweep is over as soon as it is asked for: it shows the link's last event.
    onEvent("INITiate<1>[:IMMediate]", [] {});
    onEvent("ABORt", [] {});
    onEvent("*TRG", [] {});
    onQuery("TRACe<1>[:DATA]",
            [this](const Call &call, std::string &answer) { return answerTrace(call, answer); });
}

void SpectrumAnalyzer::reset()
{
    Instrument::reset();
    state_.format.reset();
    state_.continuous = true;
}

int SpectrumAnalyzer::answerTrace(const Call &call, std::string &answer)
{
    if (call.parameters.empty()) {
        return scpi::missingParameter;
    }
    if (call.parameters.size() > 2) {
        return scpi::parameterNotAllowed;
    }
    if (!isMnemonic("TRACE1", call.parameters[0])) {
        return scpi::illegalParameterValue;
    }
    const double points = value("SWEep:POINts");
    double wanted = points;
    if (call.parameters.size() == 2) {
        if (const int error = parseNumber(call.parameters[1], wanted); error != scpi::noError) {
            return error;
        }
        if (wanted < 1.0) {
            return scpi::dataOutOfRange;
        }
    }

    const bool external = value("TRIGger<1>[:SEQuence]:SOURce") != 0.0;
    const double start = external ? value("TRIGger<1>[:SEQuence]:HOLDoff[:TIME]") : 0.0;
    std::vector<float> samples = link_.lastEvent().trace(
        Signal::RfPower, {start, value("SWEep:TIME"), static_cast<std::size_t>(points)});
    samples.resize(static_cast<std::size_t>(std::min(wanted, points)));
    answer = state_.format.encode(samples);
    return scpi::noError;
}

} // namespace simulator
