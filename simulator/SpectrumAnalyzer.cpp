#include "simulator/SpectrumAnalyzer.h"

#include "simulator/scpi/Number.h"

namespace simulator {

SpectrumAnalyzer::SpectrumAnalyzer(const AnalyzerDialect &dialect, RadioLink &link)
    : Instrument(dialect.identity),
      link(link),
      frequency(add(number("FREQuency:CENTer", 0.0, 40e9, 2.437e9, "HZ"))),
      triggerSource(add(choice("TRIGger<1>[:SEQuence]:SOURce", {"IMMediate", "EXTernal"}))),
      holdOff(add(number("TRIGger<1>[:SEQuence]:HOLDoff[:TIME]", -10.0, 30.0, 0.0, "S"))),
      sweepTime(add(number("SWEep:TIME", 1e-6, 16000.0, 1.0, "S"))),
      points(add(integer("SWEep:POINts", 101.0, 100001.0, 1001.0))),
      bandwidth(add(number("BWIDth[:RESolution]", 1.0, 80e6, 3e6, "HZ"))),
      continuous(add(boolean("INITiate<1>:CONTinuous", true)))
{
    add(number("DISPlay[:WINDow]:TRACe<1>:Y[:SCALe]:RLEVel", -130.0, 30.0, 0.0, "DBM"));
    add(number("INPut<1>:ATTenuation", 0.0, 75.0, 10.0, "DB"));
    add(number("FREQuency:SPAN", 0.0, 0.0, 0.0, "HZ")); // zero span only
    add(choice("TRIGger<1>[:SEQuence]:SLOPe", {"POSitive", "NEGative"}));
    add(choice("SWEep:TYPE", {"AUTO", "SWEep", "FFT"}));
    add(choice("SWEep:OPTimize", {"AUTO", "DYNamic", "SPEed"}).withOptionalParameter());
    add(choice("BWIDth:FFT", {"AUTO", "WIDE", "NARRow"}));
    add(number("BWIDth:VIDeo", 1.0, 80e6, 3e6, "HZ"));
    if (dialect.hasFrequencyMode) {
        add(choice("FREQuency:MODE", {"CW", "SWeep"}));
    }
    if (dialect.hasIfOutput) {
        output = &add(choice("OUTPut<1>:IF[:SOURce]", {"IF", "VIDeo"}));
        outputFrequency = &add(number("OUTPut<1>:IF:IFFRequency", 0.0, 1e9, 2.0, "HZ"));
    }
    addFormatCommands();
    onAction("INITiate<1>[:IMMediate]", [this] { startSweep(); });
    onAction("*TRG", [this] { startSweep(); });
    onAction("ABORt", [] {}); // a sweep is over as soon as it starts
    onQuery("TRACe<1>[:DATA]", {1, 2},
            [this](const Call &call, std::string *answer) { return answerTrace(call, answer); });
}

void SpectrumAnalyzer::startSweep()
{
    sweep = link.freeSweep();
    setDuration(sweepTime.value());
}

Receiver SpectrumAnalyzer::receiver() const
{
    return {hearsChannel(frequency.value(), bandwidth.value()),
            outputFrequency != nullptr ? outputFrequency->value() : 0.0};
}

void SpectrumAnalyzer::messageExecuted()
{
    if (output != nullptr) {
        link.connect({output->is("VIDeo") ? Signal::Video : Signal::Carrier, receiver()});
    }
}

Error SpectrumAnalyzer::answerTrace(const Call &call, std::string *answer)
{
    if (!isMnemonic("TRACE1", call.parameters[0])) {
        return scpi::illegalParameterValue;
    }
    double wanted = points.value();
    if (call.parameters.size() == 2) {
        if (const Error error = parseNumber(call.parameters[1], "", &wanted)) {
            return error;
        }
        if (wanted < 1.0 || wanted > points.value()) {
            return scpi::dataOutOfRange;
        }
    }

    const bool isTriggered = triggerSource.is("EXTernal");
    if (!isTriggered && continuous.isOn()) {
        startSweep();
    }
    const RadioLinkEvent &shown = isTriggered ? link.lastRecord() : sweep;
    std::vector<float> samples =
        shown.trace(Signal::RfPower,
                    {isTriggered ? holdOff.value() : 0.0, sweepTime.value(),
                     static_cast<std::size_t>(points.value())},
                    receiver());
    samples.resize(static_cast<std::size_t>(wanted));
    *answer = traceText(samples);
    return scpi::noError;
}

} // namespace simulator
